#include <qtextention/qfilelistdialog.h>

#include <qtextention/guards.h>
#include <qtextention/qfilelistwidget.h>

#include <QPushButton>
#include <QVBoxLayout>

QFileListDialog::QFileListDialog(const QStringList& files, QWidget* parent)
    : QDialog(parent), m_fileList(new QFileListWidget(files, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->addWidget(m_fileList);
    auto* ok = new QPushButton(tr("OK"), this);
    layout->addWidget(ok, 0, Qt::AlignRight);
    ConnectAssert(ok, SIGNAL(clicked()), this, SLOT(accept()));
    setMinimumWidth(500);
}

void QFileListDialog::AddFiles(const QStringList& files)
{
    m_fileList->AddFiles(files);
}

void QFileListDialog::ShowFiles(const QString& title, const QStringList& files)
{
    QFileListDialog dialog(files);
    dialog.setWindowTitle(title);
    dialog.exec();
}
