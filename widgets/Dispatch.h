// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <concepts>
#include <exception>
#include <functional>
#include <utility>

#include <QString>

namespace widgets {

/// Shows what ended a command, in a box of its own, as soon as the event loop is reached.
void showUnhandled(const QString& sentence);

/// The error style "unhandled": runs one command; whatever it throws ends it here, within the slot
/// that called it (nothing may be thrown through Qt's signals), is shown, and the event loop goes
/// on. No later step of that command runs. Window thread.
template <class Command>
void dispatch(Command&& command) noexcept {
    try {
        std::forward<Command>(command)();
    } catch (const std::exception& error) {
        showUnhandled(QString::fromUtf8(error.what()));
    } catch (...) {
        showUnhandled(QStringLiteral("The command failed for an unknown reason."));
    }
}

/// A slot for connect() that dispatches a handler: it takes as many of a signal's arguments as the
/// handler does.
template <class Receiver, class... Arguments>
auto guarded(Receiver* receiver, void (Receiver::*handler)(Arguments...)) {
    return [receiver, handler](Arguments... arguments) {
        dispatch([&] { (receiver->*handler)(arguments...); });
    };
}
template <class Handler>
auto guarded(Handler handler) {
    return [handler = std::move(handler)]<class... Arguments>(const Arguments&... arguments)
               -> void requires std::invocable<const Handler&, const Arguments&...> {
        dispatch([&] { std::invoke(handler, arguments...); });
    };
}

}  // namespace widgets
