#include "monitor/KnownFiles.h"

#include "monitor/ScreenshotName.h"

#include <utility>

void KnownFiles::beginPass()
{
    std::swap(m_lastPass, m_thisPass);
    m_thisPass.clear();
    m_position = 0;
}

bool KnownFiles::isNextAgain(std::string_view name)
{
    const std::string_view expected = std::string_view(m_lastPass).substr(m_position);
    if (expected.size() <= name.size() || expected[name.size()] != '\0'
        || !expected.starts_with(name))
        return false;
    m_thisPass.append(expected.substr(0, name.size() + 1));
    m_position += name.size() + 1;
    return true;
}

bool KnownFiles::contains(std::string_view name)
{
    // Most names are their own keys; making a key is what costs.
    const bool isKnown = m_keys.contains(name)
        || (!ScreenshotName::isAscii(name) && m_keys.contains(ScreenshotName::canonicalKey(name)));
    if (isKnown)
        m_thisPass.append(name).push_back('\0');
    return isKnown;
}

void KnownFiles::insert(std::string_view name)
{
    m_keys.insert(ScreenshotName::canonicalKey(name));
}
