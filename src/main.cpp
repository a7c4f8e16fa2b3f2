#include "app/TesseryApp.h"
#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "base/SystemError.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>

#include <cstdlib>

int main(int argc, char *argv[])
{
    Log::prepareStandardStreams();
    QApplication::setApplicationName(kAppIdentifier);
    QApplication::setApplicationDisplayName(QStringLiteral("Tessery"));
    QApplication::setApplicationVersion(QStringLiteral(TESSERY_VERSION));
    QGuiApplication::setDesktopFileName(kAppIdentifier);
    const QApplication application(argc, argv);

    LinuxPlatform platform;
    Platform::setCurrent(&platform);
    try {
        return TesseryApp(platform).run();
    } catch (const SystemError &error) {
        Log::line(QStringLiteral("❌ ") + error.description());
        return EXIT_FAILURE;
    }
}
