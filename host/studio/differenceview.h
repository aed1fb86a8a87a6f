#pragma once

#include "differencemodel.h"

#include <QTreeView>

namespace hbrc::studio {

// A per-field difference as a table (DifferenceModel), or a line saying why there is none yet.
class DifferenceView : public QTreeView
{
    Q_OBJECT
public:
    explicit DifferenceView(QWidget* parent = nullptr);

    const DifferenceModel& differences() const { return m_model; }
    void showRows(std::vector<FieldDifference> rows, const QString& before, const QString& after);
    // Empties the table and shows text in its place ("Asking the server...", a failure).
    void showMessage(const QString& text);
    QString message() const { return m_message; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    DifferenceModel m_model;
    QString m_message;
};

}  // namespace hbrc::studio
