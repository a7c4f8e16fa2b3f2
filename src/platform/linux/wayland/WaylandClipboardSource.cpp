#include "platform/linux/wayland/WaylandClipboardSource.h"

#include "base/UniqueFd.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <utility>

using namespace std::chrono_literals;

namespace {

constexpr auto kPatienceWithOwner = 2s;

struct Pipe {
    UniqueFd readable; ///< Does not block.
    /// Blocks, since it becomes the owner's, who may reckon with that.
    UniqueFd writable;
};

std::optional<Pipe> makePipe()
{
    std::array<int, 2> ends = {};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return std::nullopt;
    Pipe pipe{.readable = UniqueFd(ends[0]), .writable = UniqueFd(ends[1])};
    ::fcntl(pipe.readable.get(), F_SETFL, O_NONBLOCK);
    return pipe;
}

} // namespace

WaylandClipboardSource::WaylandClipboardSource(std::unique_ptr<DataControlDevice> device)
    : m_device(std::move(device))
{
    m_device->setChangeHandler([this] {
        if (m_reader)
            m_reader->cancel();
    });
}

QCoro::Task<std::optional<QStringList>> WaylandClipboardSource::types()
{
    const bool isTold = co_await m_device->begin();
    if (!isTold)
        co_return std::nullopt;
    m_changes = m_device->changes();
    QStringList types;
    if (m_device->selection())
        types = m_device->selection()->types();
    co_return types;
}

QCoro::Task<std::optional<QByteArray>> WaylandClipboardSource::data(QString type)
{
    std::optional<Pipe> pipe;
    if (m_device->changes() == m_changes && m_device->selection())
        pipe = makePipe();
    if (!pipe)
        co_return std::nullopt;
    m_device->selection()->receive(type.toUtf8(), pipe->writable.get());
    m_device->flush();
    pipe->writable = {}; // Else the end of what the owner writes would never be seen.
    m_reader.emplace(std::move(pipe->readable), kPatienceWithOwner);
    std::optional<QByteArray> data = co_await m_reader->readAll();
    m_reader.reset();
    if (!data)
        co_return std::nullopt;
    // Nothing comes of an owner that was replaced before it was asked. By the answer we know.
    const bool isAnswered = co_await m_device->sync();
    if (!isAnswered || m_device->changes() != m_changes)
        co_return std::nullopt;
    co_return data;
}
