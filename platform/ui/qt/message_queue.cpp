// SPDX-License-Identifier: MIT
#include "platform/ui/qt/message_queue.h"

#include <QCoreApplication>
#include <QEvent>

namespace zrui {
namespace {

constexpr QEvent::Type kSent = static_cast<QEvent::Type>(QEvent::User + 1);
constexpr QEvent::Type kPosted = static_cast<QEvent::Type>(QEvent::User + 2);

}  // namespace

LRESULT MessageQueue::Send(const Message& message) {
    SentMessage sent{message};
    std::unique_lock lock(m_mutex);
    m_sent.push_back(&sent);
    QCoreApplication::postEvent(this, new QEvent(kSent), Qt::HighEventPriority);
    m_answered.wait(lock, [&sent] { return sent.isDone; });
    return sent.answer;
}

void MessageQueue::Post(const Message& message) {
    const std::lock_guard lock(m_mutex);
    m_posted.push_back(message);
    QCoreApplication::postEvent(this, new QEvent(kPosted));
}

bool MessageQueue::event(QEvent* event) {
    if (event->type() != kSent && event->type() != kPosted) return QObject::event(event);
    ServeSent();
    if (event->type() == kPosted) ServeOnePosted();
    return true;
}

void MessageQueue::ServeSent() {
    std::unique_lock lock(m_mutex);
    while (!m_sent.empty()) {
        SentMessage* sent = m_sent.front();
        m_sent.pop_front();
        lock.unlock();
        const LRESULT answer = m_dispatch(sent->message);
        lock.lock();
        sent->answer = answer;
        sent->isDone = true;
        m_answered.notify_all();
    }
}

void MessageQueue::ServeOnePosted() {
    std::unique_lock lock(m_mutex);
    if (m_posted.empty()) return;
    const Message message = m_posted.front();
    m_posted.pop_front();
    lock.unlock();
    m_dispatch(message);
}

}  // namespace zrui
