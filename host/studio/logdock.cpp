#include "logdock.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QListWidget>
#include <QStyle>

namespace hbrc::studio {

LogDock::LogDock(QWidget* parent) : QDockWidget(tr("Log"), parent)
{
    setObjectName(QStringLiteral("logDock"));
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("logList"));
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_list->setWordWrap(true);
    auto* copy = new QAction(tr("&Copy"), m_list);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, &LogDock::copySelection);
    m_list->addAction(copy);
    setWidget(m_list);
    Log::Singleton::Instance().AddSink(this);
}

LogDock::~LogDock()
{
    Log::Singleton::Instance().RemoveSink(this);
}

void LogDock::Write(int messageType, const std::string& text)
{
    QMetaObject::invokeMethod(this, [this, messageType, entry = QString::fromStdString(text)] {
        append(messageType, entry);
    });
}

void LogDock::append(int messageType, const QString& text)
{
    const QStyle::StandardPixmap icon = messageType == Log::eError     ? QStyle::SP_MessageBoxCritical
                                        : messageType == Log::eWarning ? QStyle::SP_MessageBoxWarning
                                                                       : QStyle::SP_MessageBoxInformation;
    auto* item = new QListWidgetItem(style()->standardIcon(icon), text.trimmed(), m_list);
    item->setData(Qt::UserRole, messageType);
    m_list->scrollToItem(item);
}

QString LogDock::selectedText() const
{
    QStringList lines;
    const QList<QListWidgetItem*> selected = m_list->selectedItems();
    for (int row = 0; row < m_list->count(); ++row)
        if (selected.isEmpty() || m_list->item(row)->isSelected())
            lines << m_list->item(row)->text();
    return lines.join('\n');
}

void LogDock::copySelection() const
{
    QApplication::clipboard()->setText(selectedText());
}

}  // namespace hbrc::studio
