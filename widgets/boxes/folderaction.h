#pragma once

#include "widgets/boxes/boxtext.h"

/// The button "打开目录" for a box that names files: shows \a folder (Windows form) in the file
/// manager. What goes wrong is told in a toast of the box.
BoxAction openFolderAction(const QString &folder);
