#include <qtextention/lmrqlivesearchwidget.h>

#include <QActionGroup>
#include <QMenu>
#include <QRegularExpression>
#include <QResizeEvent>
#include <QSortFilterProxyModel>
#include <QStyle>
#include <QToolButton>

namespace {

const QSize kCancelIconRequest(16, 16);

// Wildcard text in the classic sense: * any run of characters, ? one character, [...] a set
// ([!...] negated); everything else, backslash included, stands for itself. The result is unanchored.
QString wildcardToPattern(const QString& wildcard)
{
    QString pattern;
    for (int i = 0; i < wildcard.size(); ++i) {
        const QChar c = wildcard.at(i);
        if (c == u'*') {
            pattern += QStringLiteral(".*");
        } else if (c == u'?') {
            pattern += u'.';
        } else if (c == u'[' && wildcard.indexOf(u']', i + 2) > i) {
            const int close = wildcard.indexOf(u']', i + 2);
            QString set = wildcard.mid(i + 1, close - i - 1);
            if (set.startsWith(u'!'))
                set[0] = u'^';
            else if (set.startsWith(u'^'))
                set.prepend(u'\\');
            pattern += u'[' + set.replace(u'\\', QStringLiteral("\\\\")) + u']';
            i = close;
        } else {
            pattern += QRegularExpression::escape(QString(c));
        }
    }
    return pattern;
}

QRegularExpression searchExpression(const QString& text, int syntax)
{
    QString pattern;
    switch (syntax) {
    case LMRQLiveSearchWidget::RegExp:
        pattern = text;
        break;
    case LMRQLiveSearchWidget::Wildcard:
        pattern = wildcardToPattern(text);
        break;
    default:
        pattern = QRegularExpression::escape(text);
        break;
    }
    return QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption);
}

// The position of the group's checked action; -1 when nothing is checked or the group is empty.
int checkedPosition(const QActionGroup* group)
{
    return group ? group->actions().indexOf(group->checkedAction()) : -1;
}

QAction* addChoice(QActionGroup* group, QMenu* menu, const QString& text, bool checked)
{
    auto* action = new QAction(text, group);
    action->setCheckable(true);
    action->setChecked(checked);
    menu->addAction(action);
    return action;
}

}  // namespace

LMRQLiveSearchWidget::LMRQLiveSearchWidget(QWidget* parent)
    : QLineEdit(parent)
    , m_cancelIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton))
{
    m_menu = new QMenu(this);
    m_searchButton = new QToolButton(this);
    m_searchButton->setObjectName(QStringLiteral("searchButton"));
    m_searchButton->setFocusProxy(this);
    m_searchButton->setIcon(QIcon(QStringLiteral(":/res/magnifyingglass.png")));
    m_searchButton->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_searchButton->setPopupMode(QToolButton::InstantPopup);
    m_searchButton->setAutoRaise(true);
    m_searchButton->setStyleSheet(QStringLiteral(
        "QToolButton { border: none; }QToolButton::menu-indicator {subcontrol-origin: padding; "
        "subcontrol-position: bottom right; top: 5px; } "));
    m_searchButton->resize(m_searchButton->sizeHint());

    m_cancelButton = new QToolButton(this);
    m_cancelButton->setObjectName(QStringLiteral("cancelButton"));
    m_cancelButton->setFocusProxy(this);
    m_cancelButton->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_cancelButton->setIcon(QIcon());
    m_cancelButton->setAutoRaise(true);
    m_cancelButton->setEnabled(false);
    m_cancelButton->resize(m_cancelIcon.actualSize(kCancelIconRequest) + QSize(4, 4));
    m_cancelButton->setStyleSheet(QStringLiteral("QToolButton { border: none; } "));

    connect(m_cancelButton, &QToolButton::clicked, this, &LMRQLiveSearchWidget::CancelSearch);
    connect(this, &QLineEdit::textChanged, this, &LMRQLiveSearchWidget::UpdateCancelIcon);

    QMargins margins = textMargins();
    margins.setLeft(margins.left() + m_searchButton->width());
    margins.setRight(margins.right() + m_cancelButton->width() + 2);
    setTextMargins(margins);
    setMinimumHeight(m_searchButton->height() + 5);
    m_searchButton->move(2, 2);
}

void LMRQLiveSearchWidget::setSourceModel(QSortFilterProxyModel* model)
{
    if (model != m_sourceModel)
        m_sourceModel = model;
    if (m_sourceModel) {
        const auto rebuild = &LMRQLiveSearchWidget::ModelNbColumnsChanged;
        connect(m_sourceModel, &QAbstractItemModel::columnsInserted, this, rebuild);
        connect(m_sourceModel, &QAbstractItemModel::columnsRemoved, this, rebuild);
        connect(m_sourceModel, &QAbstractItemModel::modelReset, this, rebuild);
    }
    ModelNbColumnsChanged();
}

void LMRQLiveSearchWidget::setAutoFilter()
{
    connect(this, &QLineEdit::textChanged, this, &LMRQLiveSearchWidget::applyFilter);
}

void LMRQLiveSearchWidget::CancelSearch(bool /*checked*/)
{
    clear();
}

void LMRQLiveSearchWidget::UpdateCancelIcon()
{
    const bool hasText = !text().isEmpty();
    m_cancelButton->setEnabled(hasText);
    m_cancelButton->setIcon(hasText ? m_cancelIcon : QIcon());
}

void LMRQLiveSearchWidget::ModelNbColumnsChanged()
{
    delete m_columnGroup;
    m_columnGroup = nullptr;
    m_menu->clear();

    const int columnCount = m_sourceModel ? m_sourceModel->columnCount(QModelIndex()) : 0;
    if (columnCount <= m_columnSearched)
        m_columnSearched = 0;
    if (columnCount > 1)
        addColumnChoices(columnCount);
    m_menu->addSeparator();
    addSyntaxChoices();
    m_searchButton->setMenu(m_menu);
}

void LMRQLiveSearchWidget::addColumnChoices(int columnCount)
{
    m_columnGroup = new QActionGroup(this);
    m_columnGroup->setExclusive(true);
    connect(m_columnGroup, &QActionGroup::triggered, this, &LMRQLiveSearchWidget::MenuOptionChanged);
    // "&All" is never checked here, even while every column is searched.
    addChoice(m_columnGroup, m_menu, tr("&All"), false);
    for (int column = 0; column < columnCount; ++column) {
        const QString title = m_sourceModel->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        addChoice(m_columnGroup, m_menu, title, column == m_columnSearched);
    }
}

void LMRQLiveSearchWidget::addSyntaxChoices()
{
    delete m_patternGroup;
    m_patternGroup = new QActionGroup(this);
    m_patternGroup->setExclusive(true);
    connect(m_patternGroup, &QActionGroup::triggered, this, &LMRQLiveSearchWidget::PatternSyntaxMenuOptionChanged);
    addChoice(m_patternGroup, m_menu, tr("Using Fixed String"), m_patternSyntax == FixedString);
    addChoice(m_patternGroup, m_menu, tr("Using Regular Expressions"), m_patternSyntax == RegExp);
    addChoice(m_patternGroup, m_menu, tr("Using Wildcards"), m_patternSyntax == Wildcard);
}

void LMRQLiveSearchWidget::MenuOptionChanged(QAction* /*action*/)
{
    if (!m_columnGroup) {
        m_columnSearched = 0;
    } else {
        const int position = checkedPosition(m_columnGroup);
        m_columnSearched = position <= 0 ? -1 : position - 1;
    }
    if (m_sourceModel)
        m_sourceModel->setFilterKeyColumn(m_columnSearched);
    emit textChanged(text());
}

void LMRQLiveSearchWidget::PatternSyntaxMenuOptionChanged(QAction* /*action*/)
{
    static constexpr int kSyntaxByPosition[] = {FixedString, RegExp, Wildcard};
    const int position = checkedPosition(m_patternGroup);
    m_patternSyntax = position < 0 ? FixedString : kSyntaxByPosition[position];
    emit textChanged(text());
}

void LMRQLiveSearchWidget::applyFilter()
{
    if (!m_sourceModel)
        return;
    QRegularExpression expression = searchExpression(text(), m_patternSyntax);
    // A half-typed regular expression matches nothing; the tool tip says why.
    setToolTip(expression.isValid() ? QString() : tr("Invalid regular expression: %1").arg(expression.errorString()));
    if (!expression.isValid())
        expression.setPattern(QStringLiteral("(?!)"));
    m_sourceModel->setFilterRegularExpression(expression);
}

void LMRQLiveSearchWidget::resizeEvent(QResizeEvent* event)
{
    QLineEdit::resizeEvent(event);
    const QRect contents = contentsRect();
    m_cancelButton->move(contents.right() - (m_cancelButton->width() - 1) - 3,
                         contents.top() + (contents.height() - m_cancelButton->height()) / 2 + 1);
}
