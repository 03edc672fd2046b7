// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>

#include "platform/windows/ui.h"

namespace zrui {

struct Message {
    HWND window;
    UINT number;
    WPARAM wParam;
    LPARAM lParam;
};

// Messages for the window thread, on which the queue must be created. That thread serves them in its event
// loop: all sent ones before the next posted one.
class MessageQueue : public QObject {
public:
    explicit MessageQueue(std::function<LRESULT(const Message&)> dispatch)
        : m_dispatch(std::move(dispatch)) {}

    // From any other thread: waits for the result.
    LRESULT Send(const Message& message);

    // From any thread.
    void Post(const Message& message);

protected:
    bool event(QEvent* event) override;

private:
    struct SentMessage {
        Message message;
        LRESULT answer = 0;
        bool isDone = false;
    };

    void ServeSent();
    void ServeOnePosted();

    const std::function<LRESULT(const Message&)> m_dispatch;
    std::mutex m_mutex;
    std::condition_variable m_answered;
    std::deque<SentMessage*> m_sent;
    std::deque<Message> m_posted;
};

}  // namespace zrui
