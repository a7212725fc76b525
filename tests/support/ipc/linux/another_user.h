#pragma once

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace ipc_test {

// Does it on a thread that is another user, and so are the threads that it starts. Only root can.
inline void AsUser(uid_t user, const std::function<void()>& action) {
    std::thread([&] {
        ASSERT_EQ(syscall(SYS_setresuid, -1, 0, -1), 0);  // of this thread only
        ASSERT_EQ(syscall(SYS_setresuid, -1, user, -1), 0);
        action();
    }).join();
}

// A user of this process alone, whose pipe folder in /tmp is not there yet, and goes with this; and a stranger.
class UserWithoutAFolder {
public:
    UserWithoutAFolder() = default;
    UserWithoutAFolder(const UserWithoutAFolder&) = delete;
    UserWithoutAFolder& operator=(const UserWithoutAFolder&) = delete;
    ~UserWithoutAFolder() { RemoveFolders(); }

    void Do(const std::function<void()>& action) const { AsUser(m_id, action); }
    static void StrangerDoes(const std::function<void()>& action) { AsUser(12345, action); }

    std::filesystem::path Folder() const { return "/tmp/" + Name(); }

    void RemoveFolders() const {
        for (const auto& entry : std::filesystem::directory_iterator("/tmp")) {
            if (entry.path().filename().string().starts_with(Name())) std::filesystem::remove_all(entry.path());
        }
    }

private:
    std::string Name() const { return "brindle-" + std::to_string(m_id); }

    const uid_t m_id = 1000000000 + static_cast<uid_t>(getpid());
};

}  // namespace ipc_test
