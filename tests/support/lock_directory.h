// The SSSU lock's file is placed at the first SSSU run of a process, so a test program that
// starts the provider in process gives it one private directory for the whole run:
//
//     const ::testing::Environment *const kLocks =
//         ::testing::AddGlobalTestEnvironment(new tamlin_test::LockDirectory);
#ifndef LOCK_DIRECTORY_H
#define LOCK_DIRECTORY_H

#include <stdlib.h>

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace tamlin_test {

class LockDirectory : public ::testing::Environment {
public:
    void SetUp() override
    {
        char pattern[] = "/tmp/tamlin-locks-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        m_dir = pattern;
        setenv("QORIN_LOCK_DIR", m_dir.c_str(), 1);
    }
    void TearDown() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_dir, ignored);
    }

private:
    std::string m_dir;
};

}  // namespace tamlin_test

#endif
