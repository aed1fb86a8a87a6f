#include "hbchangelistselectiondialog.h"

#include "keyboardaccess.h"

#include <qtextention/fileexplorer.h>
#include <qtextention/guards.h>
#include <qtextention/qfilelistwidget.h>

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextEdit>
#include <QVBoxLayout>

namespace {

enum ComboIndex { NewIndex = 0, DefaultIndex = 1, FirstChangeListIndex = 2 };

// Longest combo label, in bytes; the whole description stays in the item's data.
constexpr std::size_t kMaxLabelBytes = 80;

// Wide enough for a workspace path in the file list and a description line without resizing;
// no taller than a laptop screen holds comfortably. The editors give way to the file list.
constexpr int kInitialWidth = 720;
constexpr int kInitialMaxHeight = 600;
constexpr int kEditorStretch = 1;
constexpr int kFileListStretch = 2;

QStringList toPathList(const std::set<std::string>& files)
{
    QStringList paths;
    paths.reserve(static_cast<qsizetype>(files.size()));
    for (const std::string& file : files)
        paths.append(QFile::decodeName(QByteArray::fromStdString(file)));
    return paths;
}

// "<id> <description>", cut to its first kMaxLabelBytes bytes. A multi-byte character that the
// cut would split is left out whole rather than shown as a replacement character.
QString changeListLabel(const std::string& changeList, const std::string& description)
{
    std::string label = changeList + ' ' + description;
    if (label.size() > kMaxLabelBytes) {
        // Back up over continuation bytes (10xxxxxx) to the start of a split character.
        std::size_t end = kMaxLabelBytes;
        while (end > 0 && (static_cast<unsigned char>(label[end]) & 0xC0) == 0x80)
            --end;
        label.resize(end);
    }
    return QString::fromStdString(label);
}

// The identifier at the start of a combo label: everything before the first blank or control
// byte (value 32 or less).
std::string changeListOfLabel(const QString& label)
{
    const std::string bytes = label.toStdString();
    std::size_t end = 0;
    while (end < bytes.size() && static_cast<unsigned char>(bytes[end]) > 32)
        ++end;
    return bytes.substr(0, end);
}

}  // namespace

hbChangeListSelectionDialog::hbChangeListSelectionDialog(KELPtr<kel4::IDataControl> dataControl, QString assetsText,
                                                         const std::set<std::string>& files, bool filesVisible,
                                                         bool selectChangeList, QWidget* parent)
    : QDialog(parent), m_dataControl(std::move(dataControl)), m_files(files)
{
    m_fileList = new QFileListWidget(toPathList(m_files), this);
    m_fileList->setObjectName(QStringLiteral("fileList"));

    auto* layout = new QVBoxLayout(this);
    m_infoLabel = new QLabel(this);
    m_infoLabel->setObjectName(QStringLiteral("infoLabel"));
    m_infoLabel->hide();
    layout->addWidget(m_infoLabel);

    if (!assetsText.isEmpty()) {
        layout->addWidget(new QLabel(tr("Assets:"), this));
        auto* assets = new QTextEdit(this);
        assets->setObjectName(QStringLiteral("assetsEdit"));
        assets->setReadOnly(true);
        assets->setLineWrapMode(QTextEdit::NoWrap);
        assets->setTabChangesFocus(true);
        assets->setPlainText(assetsText);
        layout->addWidget(assets, kEditorStretch);
    }

    if (selectChangeList)
        buildChangeListControls(layout);

    auto* filesRow = new QHBoxLayout;
    m_showFilesButton = new QPushButton(filesVisible ? tr("Hide Files") : tr("Show Files"), this);
    m_showFilesButton->setObjectName(QStringLiteral("showFilesButton"));
    filesRow->addWidget(m_showFilesButton);
    filesRow->addStretch();
    connect(m_showFilesButton, &QPushButton::clicked, this, &hbChangeListSelectionDialog::showFiles);
    layout->addLayout(filesRow);
    layout->addWidget(m_fileList, kFileListStretch);
    m_fileList->setVisible(filesVisible);

    buildButtonRow(layout, selectChangeList);

    m_optionCheckBox = new QCheckBox(this);
    m_optionCheckBox->setObjectName(QStringLiteral("dontShowAgain"));
    setOptionCheckBoxForOption(false);
    layout->addWidget(m_optionCheckBox);

    connect(m_checkOutButton, &QPushButton::clicked, this, &hbChangeListSelectionDialog::accept);
    connect(m_continueButton, &QPushButton::clicked, this, &hbChangeListSelectionDialog::continueSlot);
    connect(m_makeWritableButton, &QPushButton::clicked, this, &hbChangeListSelectionDialog::makeWritableSlot);

    hbrc::internal::MakeButtonsReachableByKeyboard(*this);
    updateDefaultButton();
    if (selectChangeList) {
        setWindowTitle(tr("Select Pending ChangeList"));
        refreshData();
        m_changeListCombo->setFocus();
    } else {
        setWindowTitle(tr("Read-Only Assets"));
    }
    const QSize hint = sizeHint();
    resize(qMax(hint.width(), kInitialWidth), qMin(hint.height(), kInitialMaxHeight));
}

hbChangeListSelectionDialog::~hbChangeListSelectionDialog() = default;

void hbChangeListSelectionDialog::buildChangeListControls(QBoxLayout* layout)
{
    m_changeListCombo = new QComboBox(this);
    m_changeListCombo->setObjectName(QStringLiteral("changeListCombo"));
    m_descriptionEdit = new QTextEdit(this);
    m_descriptionEdit->setObjectName(QStringLiteral("descriptionEdit"));
    m_descriptionEdit->setAcceptRichText(false);
    m_descriptionEdit->setTabChangesFocus(true);
    connect(m_changeListCombo, &QComboBox::currentIndexChanged, this,
            &hbChangeListSelectionDialog::onChangeListChanged);
    layout->addWidget(new QLabel(tr("Add files to pending changelist:"), this));
    layout->addWidget(m_changeListCombo);
    layout->addWidget(new QLabel(tr("Changelist description"), this));
    layout->addWidget(m_descriptionEdit, kEditorStretch);
}

void hbChangeListSelectionDialog::buildButtonRow(QBoxLayout* layout, bool selectChangeList)
{
    auto* row = new QHBoxLayout;
    if (selectChangeList) {
        auto* refresh = new QPushButton(tr("Refresh"), this);
        refresh->setObjectName(QStringLiteral("refreshButton"));
        connect(refresh, &QPushButton::clicked, this, &hbChangeListSelectionDialog::refreshData);
        row->addWidget(refresh);
        row->addStretch();
    }
    m_checkOutButton = new QPushButton(tr("Check Out"), this);
    m_checkOutButton->setObjectName(QStringLiteral("checkOutButton"));
    m_checkOutButton->setEnabled(selectChangeList);
    m_continueButton = new QPushButton(tr("Continue"), this);
    m_continueButton->setObjectName(QStringLiteral("continueButton"));
    m_continueButton->hide();
    m_makeWritableButton = new QPushButton(tr("Make Writable"), this);
    m_makeWritableButton->setObjectName(QStringLiteral("makeWritableButton"));
    m_makeWritableButton->hide();
    m_cancelButton = new QPushButton(tr("Cancel"), this);
    m_cancelButton->setObjectName(QStringLiteral("cancelButton"));
    connect(m_cancelButton, &QPushButton::clicked, this, &hbChangeListSelectionDialog::reject);
    for (QPushButton* button : {m_checkOutButton, m_continueButton, m_makeWritableButton, m_cancelButton})
        row->addWidget(button);
    layout->addLayout(row);
}

bool hbChangeListSelectionDialog::getDontShowThisDialogAgainCheckBox() const
{
    return m_optionCheckBox && m_optionCheckBox->isChecked();
}

void hbChangeListSelectionDialog::setCheckOutText(const QString& text)
{
    m_checkOutButton->setText(text);
}

void hbChangeListSelectionDialog::setInfo(const QString& text)
{
    m_infoLabel->setText(text);
    m_infoLabel->setVisible(!text.isEmpty());
}

void hbChangeListSelectionDialog::includeContinueButton(bool include)
{
    m_continueButton->setVisible(include);
    setOptionCheckBoxForOption(include);
    updateDefaultButton();
}

void hbChangeListSelectionDialog::includeMakeWritableButton(bool include)
{
    m_makeWritableButton->setVisible(include);
    setOptionCheckBoxForOption(include);
    updateDefaultButton();
}

// Check Out is the default wherever it is enabled. In read-only mode it is disabled, and Return
// presses the first choice the caller offered (Continue, then Make Writable), else Cancel. The
// default button also takes the initial focus there, since no changelist control does.
void hbChangeListSelectionDialog::updateDefaultButton()
{
    QPushButton* preferred = m_cancelButton;
    for (QPushButton* button : {m_checkOutButton, m_continueButton, m_makeWritableButton}) {
        if (button->isEnabled() && !button->isHidden()) {
            preferred = button;
            break;
        }
    }
    preferred->setDefault(true);
    if (!m_changeListCombo)
        preferred->setFocus();
}

void hbChangeListSelectionDialog::setOptionCheckBoxForOption(bool option)
{
    m_optionCheckBox->setText(option ? tr("Don't show this dialog again (always use this option)")
                                     : tr("Don't show this dialog again (always use this changelist)"));
}

void hbChangeListSelectionDialog::refreshData()
{
    m_changeListCombo->clear();
    m_changeListCombo->addItem(QStringLiteral("New"));
    m_changeListCombo->addItem(QStringLiteral("Default"));

    kel4::List<std::string> changeLists;
    std::string errorText;
    if (m_dataControl->GetPendingChangeLists(changeLists, errorText).IsSuccess()) {
        for (const std::string& changeList : changeLists) {
            std::string description;
            if (m_dataControl->GetChangeListDescription(changeList, description, errorText).IsFailure())
                break;
            m_changeListCombo->addItem(changeListLabel(changeList, description),
                                       QString::fromStdString(description));
        }
    }
    m_changeListCombo->setCurrentIndex(DefaultIndex);
}

int hbChangeListSelectionDialog::exec()
{
    CursorGuard arrow(Qt::ArrowCursor);
    return QDialog::exec();
}

void hbChangeListSelectionDialog::accept()
{
    const int index = m_changeListCombo ? m_changeListCombo->currentIndex() : -1;
    if (index == NewIndex) {
        const std::string description = m_descriptionEdit->toPlainText().toStdString();
        std::string changeList;
        std::string errorText;
        if (m_dataControl->CreateChangeList(description, changeList, errorText).IsFailure())
            return;
        m_changeList = changeList;
    } else if (index == DefaultIndex) {
        m_changeList.clear();
    } else if (index >= FirstChangeListIndex) {
        m_changeList = changeListOfLabel(m_changeListCombo->itemText(index));
    }
    done(UseChangeList);
}

void hbChangeListSelectionDialog::reject()
{
    done(Cancelled);
}

void hbChangeListSelectionDialog::continueSlot()
{
    done(ContinueWithoutAction);
}

void hbChangeListSelectionDialog::makeWritableSlot()
{
    done(MakeWritable);
}

void hbChangeListSelectionDialog::showFiles()
{
    const bool show = m_fileList->isHidden();
    m_fileList->setVisible(show);
    m_showFilesButton->setText(show ? tr("Hide Files") : tr("Show Files"));
}

void hbChangeListSelectionDialog::showFilesInExplorer()
{
    ShowFilesInExplorer(toPathList(m_files));
}

void hbChangeListSelectionDialog::onChangeListChanged(int index)
{
    if (index < NewIndex)
        return;
    m_descriptionEdit->setEnabled(index != DefaultIndex);
    m_descriptionEdit->setReadOnly(index >= FirstChangeListIndex);
    if (index >= FirstChangeListIndex)
        m_descriptionEdit->setPlainText(m_changeListCombo->itemData(index).toString());
    else
        m_descriptionEdit->clear();
}
