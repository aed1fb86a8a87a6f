#pragma once

// What the check-box combos (QCheckBoxTreeCombo, QCheckBoxList) share: their closed look and the
// rule that keeps their pop-up open while the user ticks.

class QComboBox;
class QEvent;
class QObject;
class QString;
class QStyleOptionComboBox;

namespace qtextention::internal {

// Paints the closed combo like QComboBox does, with label as its text, in the palette's text colour.
void paintComboWithLabel(QComboBox* combo, QStyleOptionComboBox option, const QString& label);

// True for a mouse-button release on the pop-up view's viewport, which would otherwise close it.
bool isPopupViewportRelease(const QComboBox* combo, const QObject* watched, const QEvent* event);

}  // namespace qtextention::internal
