#pragma once

class QWidget;

// The toolkit's small widgets that the studio's window is built from, in one group.
QWidget* studioWidgets();
