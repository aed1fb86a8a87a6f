#include <qtextention/qfunctoraction.h>

QFunctorAction::QFunctorAction(const QString& text, Functor functor, QObject* parent)
    : QAction(text, parent), m_functor(std::move(functor))
{
    connect(this, &QAction::triggered, this, [this] {
        if (m_functor)
            m_functor();
    });
}

void QFunctorAction::setCondition(Condition condition)
{
    m_condition = std::move(condition);
    updateEnabled();
}

void QFunctorAction::updateEnabled()
{
    setEnabled(!m_condition || m_condition());
}
