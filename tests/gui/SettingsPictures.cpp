#include "app/AppState.h"
#include "app/MenuBarView.h"
#include "app/MenuWindow.h"
#include "support/FakePlatform.h"
#include "support/FixedClock.h"
#include "support/ScriptedRandom.h"
#include "support/TestMain.h"
#include "ui/settings/SettingsView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>

#include <cstdio>

using namespace Qt::StringLiterals;

// Draws every tab of the settings window, and the menu's window, in light and dark, into the folder
// that is the argument.
// The scale is that of QT_SCALE_FACTOR.

namespace {

QPalette darkPalette()
{
    QPalette dark(QColor(0x2b, 0x2d, 0x30));
    dark.setColor(QPalette::Base, QColor(0x1e, 0x1f, 0x22));
    dark.setColor(QPalette::Highlight, QColor(0x3d, 0x8f, 0xd1));
    return dark;
}

UploadSettings exampleSettings()
{
    UploadSettings settings;
    settings.serverType = UploadSettings::ServerType::ftps;
    settings.port = 990;
    settings.hostname = u"files.example.org"_s;
    settings.username = u"anna"_s;
    settings.remotePath = u"/var/www/shots"_s;
    settings.publicURLBase = u"https://example.org/shots"_s;
    settings.filenameStyle = UploadSettings::FilenameStyle::random;
    settings.randomFilenameConfig.useSymbols = true;
    return settings;
}

} // namespace

int main(int argc, char *argv[])
{
    const TestSurroundings surroundings;
    QApplication application(argc, argv);
    if (application.arguments().size() != 2) {
        std::fputs("usage: SettingsPictures FOLDER\n", stderr);
        return 2;
    }
    const QDir folder(application.arguments().at(1));
    const QPalette light = QApplication::palette();
    const QString scale = QString::number(application.devicePixelRatio());

    FakePlatform platform;
    platform.fakeAppInfo->versionText = QStringLiteral(TESSERY_VERSION);
    platform.fakeAppInfo->buildText = QStringLiteral(TESSERY_BUILD);
    platform.storePassword("sesame open");
    ScriptedRandom random;
    random.numbers = {1, 5, 18, 33, 10, 20, 30, 2, 7, 29, 14};
    for (std::uint64_t &number : random.numbers)
        number <<= 58;
    const FixedClock clock;
    const auto save = [&](QWidget &window, const QString &name, bool isDark) {
        const QString file = name + (isDark ? u"-dark"_s : u"-light"_s) + u'-' + scale + u"x.png"_s;
        return window.grab().save(folder.filePath(file));
    };
    AppState state(platform, {}, clock, random);
    MenuBarView menu(state, *platform.menuBarExtra, {});
    const QStringList names = {u"server"_s, u"filenames"_s, u"shortcuts"_s, u"general"_s};
    for (const bool isDark : {false, true}) {
        QApplication::setPalette(isDark ? darkPalette() : light);
        for (const bool isFilledIn : {false, true}) {
            state.setSettings(isFilledIn ? exampleSettings() : UploadSettings());
            SettingsView view(state, {platform, {}, clock, random});
            view.show();
            for (int tab = 0; tab < static_cast<int>(names.size()); ++tab) {
                view.setSelectedTab(tab);
                QCoreApplication::processEvents();
                const QString filled = isFilledIn ? u"-filled"_s : QString();
                if (!save(view, names.at(tab) + filled, isDark))
                    return 1;
            }
            MenuWindow window(menu);
            window.show();
            QCoreApplication::processEvents();
            if (!save(window, isFilledIn ? u"menu-filled"_s : u"menu"_s, isDark))
                return 1;
        }
    }
    return 0;
}
