// SPDX-License-Identifier: MIT
#include "uniquefd.h"

#include <unistd.h>

UniqueFd::UniqueFd(int fd)
    : m_fd(fd)
{
}

UniqueFd::~UniqueFd()
{
    close();
}

UniqueFd::UniqueFd(UniqueFd &&other) noexcept
    : m_fd(other.m_fd)
{
    other.m_fd = -1;
}

UniqueFd &UniqueFd::operator=(UniqueFd &&other) noexcept
{
    if (this != &other) {
        close();
        m_fd = other.m_fd;
        other.m_fd = -1;
    }
    return *this;
}

int UniqueFd::get() const
{
    return m_fd;
}

bool UniqueFd::isValid() const
{
    return m_fd >= 0;
}

bool UniqueFd::close()
{
    if (m_fd < 0)
        return true;
    const int fd = m_fd;
    m_fd = -1;
    return ::close(fd) == 0;
}
