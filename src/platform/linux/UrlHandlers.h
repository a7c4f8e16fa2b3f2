#pragma once

#include <QString>

/// Whether the desktop knows an application for addresses of that scheme. Looks into the files that
/// say so, and starts nothing: the program that opens addresses would hand one that nobody knows to
/// the browser and call that a success.
bool hasUrlHandler(const QString &scheme);
