// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QtGlobal>

#include <algorithm>
#include <string>
#include <vector>

/// While it lives, keeps what is logged through Qt. One at a time.
class QtMessages
{
public:
    QtMessages()
    {
        kept().clear();
        m_earlier = qInstallMessageHandler(keep);
    }
    QtMessages(QtMessages const&) = delete;
    QtMessages& operator=(QtMessages const&) = delete;
    ~QtMessages() { qInstallMessageHandler(m_earlier); }

    /// Whether a message of this kind holds this text.
    bool hold(QtMsgType kind, std::string const& text) const
    {
        return std::any_of(kept().begin(), kept().end(), [&](auto const& message) {
            return message.first == kind && message.second.find(text) != std::string::npos;
        });
    }
    /// All information messages.
    std::vector<std::string> information() const
    {
        std::vector<std::string> texts;
        for (auto const& [kind, text] : kept()) {
            if (kind == QtInfoMsg) {
                texts.push_back(text);
            }
        }
        return texts;
    }

private:
    using Kept = std::vector<std::pair<QtMsgType, std::string>>;

    static Kept& kept()
    {
        static Kept messages;
        return messages;
    }
    static void keep(QtMsgType kind, QMessageLogContext const& /*context*/, QString const& text)
    {
        kept().emplace_back(kind, text.toStdString());
    }

    QtMessageHandler m_earlier;
};
