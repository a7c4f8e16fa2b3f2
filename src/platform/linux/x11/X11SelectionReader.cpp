#include "platform/linux/x11/X11SelectionReader.h"

#include <QStringList>

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace {

/// The type of an event, without the bit that says that a program has sent it.
std::uint8_t typeOf(const xcb_generic_event_t &event)
{
    return event.response_type & 0x7f;
}

template <typename Event>
const Event &as(const xcb_generic_event_t &event)
{
    return *reinterpret_cast<const Event *>(&event);
}

/// What an owner says its pieces will come to at least, within reason; 0 if it does not say.
/// Without room for them in advance, to grow with each piece costs long copying in the end.
qsizetype announcedSize(const QByteArray &data)
{
    constexpr std::uint32_t kMost = 512 * 1024 * 1024;
    std::uint32_t size = 0;
    if (data.size() >= qsizetype{sizeof size})
        std::memcpy(&size, data.constData(), sizeof size);
    return std::min(size, kMost);
}

} // namespace

std::unique_ptr<X11SelectionReader> X11SelectionReader::open()
{
    std::unique_ptr<X11Connection> connection = X11Connection::open();
    if (!connection)
        return nullptr;
    return std::unique_ptr<X11SelectionReader>(new X11SelectionReader(std::move(connection)));
}

X11SelectionReader::X11SelectionReader(std::unique_ptr<X11Connection> connection)
    : m_connection(std::move(connection))
    , m_window(xcb_generate_id(m_connection->get()))
    , m_property(m_connection->atom("TESSERY_SELECTION"))
    , m_incr(m_connection->atom("INCR"))
{
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection->get(), 0, m_window, m_connection->root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    m_connection->setEventHandler([this](const xcb_generic_event_t &event) { handle(event); });
    m_connection->setLostHandler([this] { finish({}); });
    m_patience.setSingleShot(true);
    m_patience.callOnTimeout([this] { finish({}); });
}

xcb_window_t X11SelectionReader::owner(QByteArrayView selection)
{
    const auto reply = m_connection->reply(
        xcb_get_selection_owner_reply,
        xcb_get_selection_owner(m_connection->get(), m_connection->atom(selection)));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

QCoro::Task<std::optional<X11SelectionReader::Answer>>
X11SelectionReader::convert(QByteArray selection, QByteArray target,
                            std::chrono::milliseconds patience)
{
    m_finished = std::make_unique<OneShot>();
    m_answer.reset();
    m_comesInPieces = false;
    xcb_delete_property(m_connection->get(), m_window, m_property);
    xcb_convert_selection(m_connection->get(), m_window, m_connection->atom(selection),
                          m_connection->atom(target), m_property, XCB_CURRENT_TIME);
    m_connection->flush();
    m_patience.start(patience);
    co_await *m_finished;
    m_patience.stop();
    m_finished.reset();
    co_return std::exchange(m_answer, {});
}

QStringList X11SelectionReader::atomNames(const QByteArray &data)
{
    std::vector<xcb_get_atom_name_cookie_t> cookies;
    for (qsizetype i = 0; i + qsizetype{sizeof(xcb_atom_t)} <= data.size();
         i += qsizetype{sizeof(xcb_atom_t)}) {
        xcb_atom_t atom = XCB_ATOM_NONE;
        std::memcpy(&atom, data.constData() + i, sizeof atom);
        cookies.push_back(xcb_get_atom_name(m_connection->get(), atom));
    }
    QStringList names;
    for (const xcb_get_atom_name_cookie_t cookie : cookies) {
        if (const auto reply = m_connection->reply(xcb_get_atom_name_reply, cookie))
            names << QString::fromLatin1(xcb_get_atom_name_name(reply.get()),
                                         xcb_get_atom_name_name_length(reply.get()));
    }
    return names;
}

void X11SelectionReader::handle(const xcb_generic_event_t &event)
{
    if (!m_finished || m_finished->hasFired())
        return;
    if (typeOf(event) == XCB_SELECTION_NOTIFY)
        answered(as<xcb_selection_notify_event_t>(event));
    else if (typeOf(event) == XCB_PROPERTY_NOTIFY)
        propertyChanged(as<xcb_property_notify_event_t>(event));
}

void X11SelectionReader::answered(const xcb_selection_notify_event_t &event)
{
    if (event.property == XCB_ATOM_NONE) {
        finish(Answer{});
        return;
    }
    Answer answer;
    takeProperty(answer);
    if (answer.type == m_incr) {
        m_comesInPieces = true;
        m_answer = Answer{};
        m_answer->data.reserve(announcedSize(answer.data));
        m_patience.start();
        return;
    }
    finish(std::move(answer));
}

void X11SelectionReader::propertyChanged(const xcb_property_notify_event_t &event)
{
    if (!m_comesInPieces || event.state != XCB_PROPERTY_NEW_VALUE || event.atom != m_property)
        return;
    const qsizetype before = m_answer->data.size();
    takeProperty(*m_answer);
    if (m_answer->data.size() == before) {
        finish(std::exchange(m_answer, {}));
        return;
    }
    m_patience.start();
}

void X11SelectionReader::takeProperty(Answer &answer)
{
    // A piece may be as large as a request may be, 16 megabytes. In slices it needs no such room in
    // between, new for each. The last one takes the property away.
    constexpr std::uint32_t kSlice = 64 * 1024; // In units of four bytes.
    std::uint32_t offset = 0;
    bool isLast = false;
    while (!isLast) {
        const auto reply =
            m_connection->reply(xcb_get_property_reply,
                                xcb_get_property(m_connection->get(), 1, m_window, m_property,
                                                 XCB_GET_PROPERTY_TYPE_ANY, offset, kSlice));
        if (!reply)
            return;
        answer.type = reply->type;
        answer.data.append(static_cast<const char *>(xcb_get_property_value(reply.get())),
                           xcb_get_property_value_length(reply.get()));
        offset += kSlice;
        isLast = reply->bytes_after == 0;
    }
}

void X11SelectionReader::finish(std::optional<Answer> answer)
{
    if (!m_finished)
        return;
    m_answer = std::move(answer);
    m_finished->fire();
}
