#pragma once

#include "platform/StandardFolders.h"

#include <QDir>

/// Folders to choose; at first those of the test's private HOME.
class FakeStandardFolders final : public StandardFolders {
public:
    QString home() const override { return homePath; }
    QString desktop() const override { return desktopPath; }
    QStringList screenshots() const override { return screenshotPaths; }

    QString homePath = QDir::homePath();
    QString desktopPath = QDir::homePath() + QStringLiteral("/Desktop");
    QStringList screenshotPaths;
};
