#pragma once

#include "app/AppState.h"
#include "base/SecureRandom.h"
#include "support/FakePlatform.h"
#include "support/FixedClock.h"
#include "support/TestMain.h"
#include "support/ValidSettings.h"

#include <QCoro/QCoroTask>
#include <QDir>
#include <QFile>
#include <QObject>
#include <QTemporaryDir>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

/// AppState on a platform of fakes, with a real screenshot folder and a script in curl's place.
class AppStateCase : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_folder = std::make_unique<QTemporaryDir>();
        m_platform = std::make_unique<FakePlatform>();
        m_platform->fakeFolders->homePath = m_folder->path();
        QVERIFY(QDir(m_folder->path()).mkpath(u"Desktop"_s));
        QVERIFY(QDir(m_folder->path()).mkpath(u"tmp"_s));
        m_platform->storePassword("secret");
        curlDoes("exit 0");
    }

    void cleanup()
    {
        if (m_state) {
            m_state->tasks().requestStop();
            QCoro::waitFor(m_state->tasks().drained());
        }
        m_state.reset();
        QCOMPARE(QDir(m_folder->filePath(u"tmp"_s)).entryList(QDir::Files | QDir::Hidden),
                 QStringList());
        m_platform.reset();
        m_folder.reset();
    }

protected:
    void makeState(const std::optional<UploadSettings> &settings = {})
    {
        UploadService::Environment environment{.homeFolder = m_folder->path(),
                                               .temporaryFolder = m_folder->filePath(u"tmp"_s)};
        m_learned = environment.learned;
        environment.curl = m_folder->filePath(u"curl"_s);
        m_state =
            std::make_unique<AppState>(*m_platform, environment, m_clock, SecureRandom::system());
        if (settings)
            m_state->setSettings(*settings);
    }

    void curlDoes(const QByteArray &script)
    {
        QFile file(m_folder->filePath(u"curl"_s));
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("#!/bin/sh\n" + script + "\n");
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FakePlatform> m_platform;
    FixedClock m_clock;
    std::shared_ptr<LearnedServers> m_learned; ///< That of m_state.
    std::unique_ptr<AppState> m_state;
};
