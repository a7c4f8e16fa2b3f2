#include "app/CommandLine.h"
#include "app/TesseryApp.h"
#include "base/AppIdentifier.h"
#include "base/Log.h"
#include "base/SystemError.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/WindowSystem.h"

#include <QApplication>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kWrongUsage = 2;

/// Answers a command line that is not one to run. Gives the exit code.
int answer(const CommandLine &commandLine)
{
    switch (commandLine.kind) {
    case CommandLine::Kind::Run:
        break;
    case CommandLine::Kind::Help:
        std::fputs(qUtf8Printable(CommandLine::usage()), stdout);
        break;
    case CommandLine::Kind::Version:
        std::puts("tessery " TESSERY_VERSION);
        break;
    case CommandLine::Kind::Mistake:
        std::fprintf(stderr, "tessery: %s\n\n%s", qUtf8Printable(commandLine.mistake),
                     qUtf8Printable(CommandLine::usage()));
        return kWrongUsage;
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    Log::prepareStandardStreams();
    StartEnvironment environment = StartEnvironment::take();
    QStringList arguments;
    for (int at = 1; at < argc; ++at)
        arguments << QString::fromLocal8Bit(argv[at]);
    const CommandLine commandLine = CommandLine::parse(arguments);
    if (commandLine.kind != CommandLine::Kind::Run)
        return answer(commandLine);
    auto remoteControl = std::make_unique<DBusRemoteControl>(std::move(environment));
    if (const std::optional<int> exitCode = remoteControl->begin(commandLine.action)) {
        // The toolkit's thread for the bus still runs and would use what is destroyed after main().
        std::fflush(nullptr);
        std::quick_exit(*exitCode);
    }

    QApplication::setApplicationName(kAppIdentifier);
    QApplication::setApplicationDisplayName(QStringLiteral("Tessery"));
    QApplication::setApplicationVersion(QStringLiteral(TESSERY_VERSION));
    QGuiApplication::setDesktopFileName(kAppIdentifier);
    WindowSystem windowSystem(argc, argv);
    const QApplication application(windowSystem.argumentCount(), windowSystem.arguments());

    LinuxPlatform platform(windowSystem.surroundings(), std::move(remoteControl));
    Platform::setCurrent(&platform);
    try {
        return TesseryApp(platform).run();
    } catch (const SystemError &error) {
        Log::line(QStringLiteral("❌ ") + error.description());
        return EXIT_FAILURE;
    }
}
