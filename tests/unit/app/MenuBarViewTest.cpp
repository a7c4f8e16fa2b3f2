#include "app/MenuBarView.h"

#include "app/AppState.h"
#include "base/Clock.h"
#include "base/SecureRandom.h"
#include "support/FakePlatform.h"
#include "support/TestMain.h"
#include "support/ValidSettings.h"

#include <QApplication>
#include <QDir>
#include <QObject>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

class MenuBarViewTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TestSurroundings::failOnWarnings();
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_folder->path()).mkpath(u"Desktop"_s));
        m_platform = std::make_unique<FakePlatform>();
        m_platform->fakeFolders->homePath = m_folder->path();
        m_state = std::make_unique<AppState>(
            *m_platform,
            UploadService::Environment{.homeFolder = m_folder->path(),
                                       .temporaryFolder = m_folder->path()},
            Clock::system(), SecureRandom::system());
        m_opened = 0;
        m_quit = 0;
        m_view = std::make_unique<MenuBarView>(
            *m_state, *m_platform->menuBarExtra,
            MenuBarView::Actions{.openSettings = [this] { ++m_opened; },
                                 .quit =
                                     [this] {
                                         ++m_quit;
                                     }});
    }

    void cleanup()
    {
        m_view.reset();
        m_state.reset();
        m_platform.reset();
        m_folder.reset();
    }

    void startsInactiveAndReady()
    {
        QCOMPARE(m_platform->fakeMenuBarExtra->title, u"Screenshot Uploader"_s);
        QCOMPARE(menu().texts(),
                 QStringList({u"Monitoring Inactive"_s, u"Ready"_s, QString(),
                              u"Start Monitoring"_s, u"Upload from Clipboard"_s, QString(),
                              u"Settings..."_s, QString(), u"Quit"_s}));
        QCOMPARE(menu().items[4].caption, u"⌘⇧U"_s);
        QCOMPARE(menu().items[6].shortcut, QKeySequence(u"Meta+,"_s));
        QCOMPARE(menu().items[8].shortcut, QKeySequence(u"Meta+Q"_s));
    }

    void isShownBeforeThePasswordIsRead()
    {
        class Extra final : public MenuBarExtra {
        public:
            explicit Extra(const FakeSecretStore &secrets) : m_secrets(secrets) { }
            void show(const QString &, const QIcon &, std::function<void()>) override
            {
                readsBefore = m_secrets.reads;
            }
            void setMenu(std::vector<MenuItem> items) override { lines = items.size(); }
            void setMenuWindow(std::function<void()>) override { }
            std::optional<bool> isShown() const override { return true; }
            void whenKnown(std::function<void()> then) override { then(); }

            int readsBefore = -1;
            std::size_t lines = 0;

        private:
            const FakeSecretStore &m_secrets;
        };
        makeValid();
        const FakeSecretStore &secrets = *m_platform->fakeSecrets;
        const int reads = secrets.reads;
        Extra extra(secrets);
        const MenuBarView view(*m_state, extra, {});
        QCOMPARE(extra.readsBefore, reads);
        QCOMPARE(extra.lines, std::size_t{9});
        QVERIFY(secrets.reads > reads);
    }

    void everySymbolIsDrawn()
    {
        for (const int index : {0, 3, 4})
            QVERIFY(!menu().items[static_cast<std::size_t>(index)].icon.isNull());
        makeValid();
        menu().items[3].action();
        QTRY_COMPARE(menu().items[0].text, u"Monitoring Active"_s);
        for (const int index : {0, 3})
            QVERIFY(!menu().items[static_cast<std::size_t>(index)].icon.isNull());
    }

    void invalidSettingsDisableBothActionsOnly()
    {
        QCOMPARE(enabledTexts(), QStringList({u"Settings..."_s, u"Quit"_s}));
    }

    void validSettingsEnableBothActions()
    {
        makeValid();
        QTRY_COMPARE(enabledTexts(),
                     QStringList({u"Start Monitoring"_s, u"Upload from Clipboard"_s,
                                  u"Settings..."_s, u"Quit"_s}));
    }

    void openingTheMenuSeesAPasswordStoredSince()
    {
        m_state->setSettings(validSettings());
        QTRY_VERIFY(!enabledTexts().contains(u"Start Monitoring"_s));
        m_platform->storePassword("x");
        menu().aboutToShow();
        QVERIFY(enabledTexts().contains(u"Start Monitoring"_s));
    }

    void monitoringButtonStartsAndStops()
    {
        makeValid();
        menu().items[3].action();
        QVERIFY(m_state->isMonitoring());
        QTRY_COMPARE(menu().items[3].text, u"Stop Monitoring"_s);
        QCOMPARE(menu().items[0].text, u"Monitoring Active"_s);
        QCOMPARE(menu().items[1].text, u"Monitoring for screenshots..."_s);
        menu().items[3].action();
        QVERIFY(!m_state->isMonitoring());
        QTRY_COMPARE(menu().items[3].text, u"Start Monitoring"_s);
        QCOMPARE(menu().items[1].text, u"Monitoring stopped"_s);
    }

    void stopIsDisabledOnceTheSettingsAreInvalid()
    {
        makeValid();
        m_state->startMonitoring();
        m_state->setSettings(UploadSettings());
        QTRY_COMPARE(menu().items[3].text, u"Stop Monitoring"_s);
        QVERIFY(!menu().items[3].enabled);
    }

    void captionFollowsTheShortcut()
    {
        UploadSettings settings;
        settings.uploadClipboardShortcut = {
            u"s"_s,
            {UploadSettings::KeyboardShortcut::KeyModifier::control,
             UploadSettings::KeyboardShortcut::KeyModifier::option}};
        m_state->setSettings(settings);
        QTRY_COMPARE(menu().items[4].caption, u"⌃⌥S"_s);
    }

    void settingsAndQuitDoWhatTheySay()
    {
        menu().items[6].action();
        QCOMPARE(m_opened, 1);
        menu().items[8].action();
        QCOMPARE(m_quit, 1);
    }

private:
    FakeMenuBarExtra &menu() const { return *m_platform->fakeMenuBarExtra; }

    QStringList enabledTexts() const
    {
        QStringList texts;
        for (const MenuItem &item : menu().items) {
            if (item.kind == MenuItem::Kind::Action && item.enabled)
                texts << item.text;
        }
        return texts;
    }

    void makeValid()
    {
        m_platform->storePassword("x");
        m_state->setSettings(validSettings());
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<FakePlatform> m_platform;
    std::unique_ptr<AppState> m_state;
    std::unique_ptr<MenuBarView> m_view;
    int m_opened = 0;
    int m_quit = 0;
};

TESSERY_TEST_MAIN(QApplication, MenuBarViewTest)
#include "MenuBarViewTest.moc"
