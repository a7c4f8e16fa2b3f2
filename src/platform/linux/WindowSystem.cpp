#include "platform/linux/WindowSystem.h"

#include "base/Log.h"
#include "platform/linux/WindowSystemChoice.h"

using namespace Qt::StringLiterals;

WindowSystem::WindowSystem(int argc, char **argv)
    : m_surroundings(Surroundings::look(argc, argv)), m_arguments(argv, argv + argc)
{
    const WindowSystemChoice choice = chooseWindowSystem(m_surroundings);
    if (!choice.reason.isEmpty())
        Log::line(u"🪟 Window system: "_s + choice.reason);
    m_platform = choice.platform;
    if (!m_platform.isEmpty())
        m_arguments.insert(m_arguments.end(), {m_option.data(), m_platform.data()});
    m_argumentCount = static_cast<int>(m_arguments.size());
    m_arguments.push_back(nullptr);
}
