#pragma once

#include "base/OneShot.h"
#include "platform/linux/x11/X11Connection.h"

#include <QByteArray>
#include <QCoro/QCoroTask>
#include <QTimer>

#include <chrono>
#include <memory>
#include <optional>

/// Asks the owners of X selections for what they hold, without blocking while they take their time.
/// The toolkit's own clipboard blocks for five seconds at each question to an owner that hangs. One
/// question at a time. Main thread. Must outlive its tasks.
class X11SelectionReader {
public:
    /// What an owner has answered.
    struct Answer {
        xcb_atom_t type = XCB_ATOM_NONE; ///< XCB_ATOM_NONE: the owner refuses.
        QByteArray data; ///< In units of format 32, four bytes each.
    };

    /// Null if there is no X display.
    static std::unique_ptr<X11SelectionReader> open();

    /// The window that owns the selection of that name; XCB_WINDOW_NONE if nobody does.
    xcb_window_t owner(QByteArrayView selection);

    /// Asks for the selection as target. Absent if the owner is silent for as long as patience.
    [[nodiscard]] QCoro::Task<std::optional<Answer>>
    convert(QByteArray selection, QByteArray target, std::chrono::milliseconds patience);

    /// The name of each of the atoms that data consists of.
    QStringList atomNames(const QByteArray &data);

private:
    explicit X11SelectionReader(std::unique_ptr<X11Connection> connection);
    void handle(const xcb_generic_event_t &event);
    void answered(const xcb_selection_notify_event_t &event);
    void propertyChanged(const xcb_property_notify_event_t &event);
    /// Adds to answer what the owner has put down and takes it away, which tells it to go on.
    void takeProperty(Answer &answer);
    void finish(std::optional<Answer> answer);

    std::unique_ptr<X11Connection> m_connection;
    xcb_window_t m_window = XCB_WINDOW_NONE; ///< Where owners put their answers.
    xcb_atom_t m_property = XCB_ATOM_NONE; ///< The property of the window for that.
    xcb_atom_t m_incr = XCB_ATOM_NONE; ///< The type of an answer that comes in pieces.
    QTimer m_patience;
    std::unique_ptr<OneShot> m_finished; ///< Null while nothing is asked.
    std::optional<Answer> m_answer;
    bool m_comesInPieces = false;
};
