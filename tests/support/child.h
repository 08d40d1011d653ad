// Processes of a test's own, which may be killed and whose disk may be full.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <random>
#include <thread>

// Runs the body in a process of its own, which ends with the body's result as its status, or with 99 when it throws.
template <class Body>
pid_t startChild(Body body) {
    const pid_t child = fork();
    if (child != 0) return child;
    try {
        _exit(body());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    _exit(99);
}

// The exit status; -1 of a process that was killed.
inline int waitForChild(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

template <class Body>
int inChild(Body body) {
    return waitForChild(startChild(body));
}

// No file of this process can grow beyond that, as on a full disk.
inline void limitFileSize(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit;
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

// Starts a process that runs write(tell), which writes without end and calls tell() behind each write, and kills it at
// a random moment; then runs check(), which looks at what is left. Again and again, until check() has failed.
template <class Write, class Check>
void killWriters(int rounds, Write write, Check check) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> writes(0, 4), microseconds(0, 3000);
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = startChild([&]() -> int {
            write([&] { return ::write(ends[1], "w", 1); });
            return 0;
        });
        close(ends[1]);
        char byte;
        for (int n = writes(random); n > 0; --n) ASSERT_EQ(read(ends[0], &byte, 1), 1) << "the writer ended by itself";
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        kill(child, SIGKILL);
        ASSERT_EQ(waitForChild(child), -1) << "the writer ended by itself";
        close(ends[0]);
        check();
        ASSERT_FALSE(testing::Test::HasFailure());
    }
}
