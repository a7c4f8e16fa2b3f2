#pragma once

#include "platform/FolderWatcher.h"

#include <utility>

/// A watcher that delivers batches when told to.
class FakeFolderWatcher : public FolderWatcher {
public:
    Start start(const QString &path, OnBatch onBatch) override
    {
        ++starts;
        watchedPath = path;
        m_onBatch = std::move(onBatch);
        return outcome;
    }

    /// Something happened in the folder, a second ago.
    void deliverBatch(bool mayBeAnother = false) { m_onBatch(mayBeAnother); }

    Start outcome = Start::Running; ///< What start() gives.
    int starts = 0;
    QString watchedPath;

private:
    OnBatch m_onBatch;
};
