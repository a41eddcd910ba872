// Workers that die, hang and take all memory.
#include "batch/WorkerPool.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <new>

namespace gxtext {
namespace {

using std::chrono::milliseconds;

// "crash", "hang", "eat", or what is sent back with a long tail.
WorkerPool::Work work() {
    return [](const std::string& request) -> std::string {
        if (request == "crash") raise(SIGKILL);
        if (request == "exit") _exit(5);
        if (request == "hang") pause();
        if (request == "eat") {
            try {
                for (std::string all = "x";; all += all) {
                }
            } catch (const std::bad_alloc&) {
                return "no memory";
            }
        }
        return request + std::string(300000, '.');
    };
}

std::map<uint64_t, WorkerAnswer> answersOf(int workers, const std::vector<std::string>& requests,
                                           WorkerLimits limits) {
    std::map<uint64_t, WorkerAnswer> answers;
    WorkerPool pool(workers, work, limits);
    size_t next = 0;
    while (answers.size() < requests.size()) {
        for (; next < requests.size() && pool.hasRoom(); next++) pool.submit(next, requests[next]);
        pool.wait(-1, milliseconds(100), [&](WorkerAnswer&& answer) {
            EXPECT_TRUE(answers.emplace(answer.ticket, std::move(answer)).second) << "twice";
        });
    }
    EXPECT_TRUE(pool.isIdle());
    return answers;
}

TEST(WorkerPool, WhatGoesWrongInOnePieceCostsThatPieceAlone) {
    std::vector<std::string> requests;
    for (int i = 0; i < 60; i++) requests.push_back(std::to_string(i) + std::string(200000, '-'));
    for (const size_t i : {0, 20, 21}) requests[i] = "crash";
    requests[59] = "exit";
    for (const size_t i : {30, 31}) requests[i] = "hang";
    auto answers = answersOf(2, requests, {milliseconds(1000), 0});
    for (size_t i = 0; i < requests.size(); i++) {
        const WorkerAnswer& answer = answers[i];
        const std::string& request = requests[i];
        if (request == "crash") {
            EXPECT_EQ(answer.death, "the worker died: Killed");
        } else if (request == "exit") {
            EXPECT_EQ(answer.death, "the worker exited");
        } else if (request == "hang") {
            EXPECT_EQ(answer.death, "no answer within 1 s");
        } else {
            EXPECT_EQ(answer.death, std::nullopt);
            EXPECT_EQ(answer.bytes, request + std::string(300000, '.'));
        }
    }
}

TEST(WorkerPool, APieceThatEatsMemoryLeavesTheOthersTheirs) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers take more address space than any limit";
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    GTEST_SKIP() << "sanitizers take more address space than any limit";
#endif
#endif
    auto answers =
        answersOf(2, {"a", "eat", "b", "eat", "c"}, {milliseconds(0), size_t{256} << 20});
    for (const size_t i : {1, 3}) EXPECT_EQ(answers[i].bytes, "no memory");
    for (const size_t i : {0, 2, 4}) EXPECT_EQ(answers[i].bytes.size(), 300001u);
}

// Workers know the end of the one that started them, however it came.
TEST(WorkerPool, WorkersEndWithTheirParent) {
    int alive[2];
    ASSERT_EQ(pipe(alive), 0);
    const pid_t parent = fork();
    if (parent == 0) {
        close(alive[0]);
        WorkerPool pool(3, work, {});
        for (uint64_t i = 0; i < 3; i++) pool.submit(i, "hang");
        raise(SIGKILL);
    }
    close(alive[1]);
    waitpid(parent, nullptr, 0);
    char byte;
    EXPECT_EQ(read(alive[0], &byte, 1), 0) << "the end of the last process that can write";
    close(alive[0]);
}

}  // namespace
}  // namespace gxtext
