#pragma once

#include "app/AppState.h"
#include "base/AppIdentifier.h"
#include "base/Clock.h"
#include "base/SecureRandom.h"
#include "base/TemporaryFile.h"
#include "support/FakePlatform.h"
#include "ui/settings/SettingsView.h"

#include <QAbstractButton>
#include <QCoro/QCoroTask>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// The settings window on a platform of fakes, with a shell program in curl's place.
class SettingsWindow {
public:
    SettingsWindow()
    {
        QDir(m_folder.path()).mkdir(QStringLiteral("tmp"));
        platform.fakeFolders->homePath = m_folder.path();
        curlDoes("exit 0");
        state = std::make_unique<AppState>(platform, environment(), Clock::system(),
                                           SecureRandom::system());
    }
    ~SettingsWindow()
    {
        view.reset();
        state->tasks().requestStop();
        QCoro::waitFor(state->tasks().drained());
    }
    SettingsWindow(const SettingsWindow &) = delete;
    SettingsWindow &operator=(const SettingsWindow &) = delete;

    /// Opens the window, a new one if there is one already.
    void open()
    {
        view.reset();
        view = std::make_unique<SettingsView>(
            *state,
            SettingsView::Services{platform, environment(), Clock::system(), SecureRandom::system(),
                                   savedMessageTime, testMessageTime});
        view->show();
        view->activateWindow();
        if (!QTest::qWaitForWindowActive(view.get()))
            qFatal("the window does not become active");
    }

    /// What a saved record needs to be valid.
    void fillIn(UploadSettings::ServerType type = UploadSettings::ServerType::ftp)
    {
        storePassword("sesame");
        UploadSettings settings;
        settings.serverType = type;
        settings.port = 21;
        settings.hostname = QStringLiteral("127.0.0.1");
        settings.username = QStringLiteral("me");
        settings.publicURLBase = QStringLiteral("https://x.org");
        state->setSettings(settings);
    }

    void curlDoes(const QByteArray &body)
    {
        m_curl.reset();
        m_curl = std::make_unique<TemporaryFile>(path(QStringLiteral("curl")),
                                                 "#!/bin/sh\n" + body + '\n',
                                                 TemporaryFile::Mode::ReadWriteExecute);
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }

    QStringList temporaryFiles() const
    {
        return QDir(path(QStringLiteral("tmp"))).entryList(QDir::Files | QDir::Hidden);
    }

    void storePassword(const QByteArray &password)
    {
        platform.fakeSecrets->items[item()] = password;
    }
    QByteArray storedPassword() const
    {
        const auto found = platform.fakeSecrets->items.find(item());
        return found == platform.fakeSecrets->items.end() ? QByteArray("nothing") : found->second;
    }

    /// The control of that object name, which must be there.
    template <typename Control = QWidget>
    Control *find(const QString &name) const
    {
        auto *const control = view->findChild<Control *>(name);
        if (!control)
            qFatal("there is no %s", qPrintable(name));
        return control;
    }

    void click(const QString &name) const
    {
        // What has appeared or gone since then moves the others.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QTest::mouseClick(find(name), Qt::LeftButton);
    }

    /// Presses a button as a screen reader does: the keyboard stays where it is.
    void press(const QString &name) const { find<QAbstractButton>(name)->click(); }

    /// Puts text in the place of what is in the field.
    void retype(const QString &name, const QString &text) const
    {
        auto *const field = find(name);
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, text);
    }

    FakePlatform platform;
    std::unique_ptr<AppState> state;
    std::unique_ptr<SettingsView> view;
    std::chrono::milliseconds savedMessageTime{2000};
    std::chrono::milliseconds testMessageTime{3000};

private:
    static std::pair<QString, QString> item()
    {
        return {kAppIdentifier, QStringLiteral("serverPassword")};
    }

    UploadService::Environment environment() const
    {
        return {.homeFolder = m_folder.path(),
                .temporaryFolder = path(QStringLiteral("tmp")),
                .curl = path(QStringLiteral("curl"))};
    }

    QTemporaryDir m_folder;
    std::unique_ptr<TemporaryFile> m_curl;
};
