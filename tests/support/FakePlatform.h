#pragma once

#include "platform/Platform.h"
#include "support/FakeAppInfo.h"
#include "support/FakeEventTap.h"
#include "support/FakeFolderAccessPanel.h"
#include "support/FakeFolderWatcher.h"
#include "support/FakeKeyboardLayout.h"
#include "support/FakeLoginItem.h"
#include "support/FakeMenuBarExtra.h"
#include "support/FakeNotificationCenter.h"
#include "support/FakePasteboard.h"
#include "support/FakePreferencesStore.h"
#include "support/FakeRemoteControl.h"
#include "support/FakeSecretStore.h"
#include "support/FakeStandardFolders.h"
#include "support/FakeSystemSettings.h"

/// A platform of fakes, in use as long as it lives.
class FakePlatform : public Platform {
public:
    FakePlatform()
    {
        folders = own(std::make_unique<FakeStandardFolders>(), fakeFolders);
        preferences = own(std::make_unique<FakePreferencesStore>(), fakePreferences);
        secrets = own(std::make_unique<FakeSecretStore>(), fakeSecrets);
        notifications = own(std::make_unique<FakeNotificationCenter>(), fakeNotifications);
        pasteboard = own(std::make_unique<FakePasteboard>(), fakePasteboard);
        menuBarExtra = own(std::make_unique<FakeMenuBarExtra>(), fakeMenuBarExtra);
        folderAccessPanel = own(std::make_unique<FakeFolderAccessPanel>(), fakeFolderAccessPanel);
        keyboardLayout = own(std::make_unique<FakeKeyboardLayout>(), fakeKeyboardLayout);
        loginItem = own(std::make_unique<FakeLoginItem>(), fakeLoginItem);
        systemSettings = own(std::make_unique<FakeSystemSettings>(), fakeSystemSettings);
        appInfo = own(std::make_unique<FakeAppInfo>(), fakeAppInfo);
        remoteControl = own(std::make_unique<FakeRemoteControl>(), fakeRemoteControl);
        makeFolderWatcher = [this] {
            ++watchersMade;
            return own(std::make_unique<FakeFolderWatcher>(), fakeFolderWatcher);
        };
        makeEventTap = fakeEventTaps.factory();
        setCurrent(this);
    }
    ~FakePlatform() { setCurrent(nullptr); }
    FakePlatform(const FakePlatform &) = delete;
    FakePlatform &operator=(const FakePlatform &) = delete;

    /// Stores the server's password, without which no settings are valid.
    void storePassword(const QByteArray &password)
    {
        secrets->write(QStringLiteral("org.tessery.Tessery"), QStringLiteral("serverPassword"),
                       password);
    }

    FakeStandardFolders *fakeFolders = nullptr;
    FakePreferencesStore *fakePreferences = nullptr;
    FakeSecretStore *fakeSecrets = nullptr;
    FakeNotificationCenter *fakeNotifications = nullptr;
    FakePasteboard *fakePasteboard = nullptr;
    FakeMenuBarExtra *fakeMenuBarExtra = nullptr;
    FakeFolderAccessPanel *fakeFolderAccessPanel = nullptr;
    FakeKeyboardLayout *fakeKeyboardLayout = nullptr;
    FakeLoginItem *fakeLoginItem = nullptr;
    FakeSystemSettings *fakeSystemSettings = nullptr;
    FakeAppInfo *fakeAppInfo = nullptr;
    FakeRemoteControl *fakeRemoteControl = nullptr;
    FakeFolderWatcher *fakeFolderWatcher = nullptr; ///< The latest; may be gone.
    int watchersMade = 0;
    FakeEventTaps fakeEventTaps;

private:
    template <typename Fake>
    static std::unique_ptr<Fake> own(std::unique_ptr<Fake> fake, Fake *&pointer)
    {
        pointer = fake.get();
        return fake;
    }
};
