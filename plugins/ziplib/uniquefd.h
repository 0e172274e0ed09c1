// SPDX-License-Identifier: MIT
#ifndef ZIPLIB_UNIQUEFD_H
#define ZIPLIB_UNIQUEFD_H

// Owns one POSIX file descriptor; every path through the plug-in closes what
// it opened, including the failing ones.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd);
    ~UniqueFd();
    UniqueFd(UniqueFd &&other) noexcept;
    UniqueFd &operator=(UniqueFd &&other) noexcept;
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;

    int get() const;
    bool isValid() const;
    // Closes now and reports the result: a failing close() can be the only
    // sign that written data did not reach the disk.
    bool close();

private:
    int m_fd = -1;
};

#endif
