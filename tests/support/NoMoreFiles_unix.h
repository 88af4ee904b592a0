#pragma once

#include <QtGlobal>

#include <sys/resource.h>

namespace KrTest {

/// While there is one, this process can open no file and make no pipe.
class NoMoreFiles
{
public:
    NoMoreFiles()
    {
        ::getrlimit(RLIMIT_NOFILE, &m_limit);
        rlimit none = m_limit;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreFiles() { ::setrlimit(RLIMIT_NOFILE, &m_limit); }
    Q_DISABLE_COPY(NoMoreFiles)

private:
    rlimit m_limit = {};
};

} // namespace KrTest
