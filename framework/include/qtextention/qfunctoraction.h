#pragma once

#include <qtextention/qtextentionglobal.h>

#include <QAction>

#include <functional>

/// A QAction bound to a callable: triggering the action calls it. An optional condition decides
/// whether the action is enabled; updateEnabled() asks it again (e.g. when a menu is about to show
/// or the selection changes).
///
///     auto* save = new QFunctorAction(tr("&Save"), [this] { save(); }, menu);
///     save->setCondition([this] { return hasChanges(); });
class QTEXTENTION_EXPORT QFunctorAction : public QAction
{
    Q_OBJECT
public:
    using Functor = std::function<void()>;
    using Condition = std::function<bool()>;

    QFunctorAction(const QString& text, Functor functor, QObject* parent = nullptr);

    void setCondition(Condition condition);
    /// Enables the action when it has no condition or its condition holds.
    void updateEnabled();

private:
    Functor m_functor;
    Condition m_condition;
};
