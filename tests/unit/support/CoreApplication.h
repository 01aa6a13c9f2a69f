// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>

/// Qt's application object, as a client may have one.
class CoreApplication
{
private:
    int m_count = 1;
    char m_name[5] = "test";
    char* m_arguments[2] = {m_name, nullptr};
    QCoreApplication m_application{m_count, m_arguments};
};
