#pragma once

// Puts the sort-arrow images the dark styles fetch by name ("arrowUp.png", "arrowDown.png") into
// QPixmapCache, as the host application does before it shows windows.
void supplyHostImages();
