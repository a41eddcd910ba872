#include "text/GxTextInstanceManager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/Error.h"
#include "support/AllocationFailure.h"
#include "support/NativeErrors.h"

namespace GxFontEffect {
namespace {

using Registry = GxTextInstanceManager;

// The registry never looks into an object, so any address can stand for one.
class Dummy {
public:
    Dummy() : memory_(std::make_unique<char>()) {}
    GxTextObject* object() const { return reinterpret_cast<GxTextObject*>(memory_.get()); }
    // NOLINTNEXTLINE(google-explicit-constructor): stands for the pointer in calls
    operator GxTextObject*() const { return object(); }

private:
    std::unique_ptr<char> memory_;
};

std::vector<GxTextObject*> deleted;
std::function<void(GxTextObject*)> whileDeleting;

void deleteObject(GxTextObject* object) {
    deleted.push_back(object);
    if (whileDeleting) whileDeleting(object);
    Registry::Unregister(Registry::FindGxTextHandle(object));
}

class GxTextInstanceManagerTest : public testing::Test {
protected:
    void SetUp() override {
        deleted.clear();
        whileDeleting = nullptr;
        Registry::SetCallBack(deleteObject);
    }
    void TearDown() override {
        Registry::Unlock();
        Registry::SetCallBack(nullptr);
    }
};

std::string bindLine(GxTextObject* object, int count) {
    char line[64];
    snprintf(line, sizeof(line), "Bind(%p) - count: %d", static_cast<void*>(object), count);
    return line;
}

TEST_F(GxTextInstanceManagerTest, HandlesCountUpAndAreNeverReused) {
    Dummy a, b, c;
    const int first = Registry::Register(a);
    EXPECT_GE(first, 1);
    EXPECT_EQ(Registry::Register(b), first + 1);
    EXPECT_EQ(Registry::Register(a), first) << "the second time gives the same handle";
    EXPECT_EQ(Registry::FindGxTextHandle(b), first + 1);
    EXPECT_EQ(Registry::FindGxTextObject(first), a.object());
    Registry::Unregister(first);
    Registry::Unregister(first + 1);
    Registry::Unregister(first);
    EXPECT_EQ(Registry::Register(c), first + 2);
    EXPECT_EQ(Registry::Register(a), first + 3) << "a new handle after it was forgotten";
    Registry::Unregister(first + 2);
    Registry::Unregister(first + 3);
    EXPECT_EQ(Registry::FindGxTextHandle(a), -1);
    const gxtest::LogCapture log;
    EXPECT_EQ(Registry::FindGxTextObject(first), nullptr);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines()[0], (gxtest::LogLine{ANDROID_LOG_DEBUG, "GxTextInstanceManager",
                                               "FindGxTextObject() - Can't find the handle[" +
                                                   std::to_string(first) + "]"}));
}

TEST_F(GxTextInstanceManagerTest, TheLastReleaseDeletes) {
    Dummy a;
    const int handle = Registry::Register(a);
    const gxtest::LogCapture log;
    Registry::Bind(a);
    Registry::Bind(a);
    EXPECT_EQ(log.texts(), (std::vector<std::string>{bindLine(a, 1), bindLine(a, 2)}));
    EXPECT_TRUE(Registry::Release(a, true));
    EXPECT_TRUE(deleted.empty());
    EXPECT_TRUE(Registry::Release(handle));
    EXPECT_EQ(deleted, std::vector<GxTextObject*>{a});
    EXPECT_EQ(Registry::FindGxTextHandle(a), -1) << "unregistered under the lock";
    gxtest::expectNativeError("GxTextInstanceManager", 9,
                              [&] { EXPECT_FALSE(Registry::Release(a, true)); });
}

TEST_F(GxTextInstanceManagerTest, AReleaseThatKeepsTheObjectLeavesACountThatNeverDeletes) {
    Dummy a;
    Registry::Bind(a);
    EXPECT_TRUE(Registry::Release(a, false));
    EXPECT_TRUE(Registry::Release(a, true)) << "from 0 to -1";
    EXPECT_TRUE(Registry::Release(a, true));
    EXPECT_TRUE(deleted.empty());
    const gxtest::LogCapture log;
    Registry::Bind(a);
    EXPECT_TRUE(log.contains(bindLine(a, -1)));
    Registry::Bind(a);
    Registry::Bind(a);
    EXPECT_TRUE(Registry::Release(a, true));
    EXPECT_EQ(deleted, std::vector<GxTextObject*>{a});
}

TEST_F(GxTextInstanceManagerTest, LockDefersDeletionAndBindRescues) {
    Dummy a, b, c;
    for (GxTextObject* object : {a.object(), b.object(), c.object()}) Registry::Bind(object);
    Registry::Lock();
    EXPECT_TRUE(Registry::Release(c, true));
    EXPECT_TRUE(Registry::Release(a, true));
    EXPECT_TRUE(Registry::Release(b, true));
    EXPECT_TRUE(deleted.empty());
    EXPECT_FALSE(Registry::Release(a, true)) << "no binding left while it waits";
    const gxtest::LogCapture log;
    Registry::Bind(a);
    EXPECT_TRUE(log.contains(bindLine(a, 1)));
    Registry::Unlock();
    EXPECT_EQ(deleted, (std::vector<GxTextObject*>{c, b})) << "in order of release";
    Registry::Unlock();
    EXPECT_EQ(deleted.size(), 2u);
    EXPECT_TRUE(Registry::Release(a, true));
    EXPECT_EQ(deleted.size(), 3u) << "no longer deferred";
}

TEST_F(GxTextInstanceManagerTest, AHeldObjectIsDeletedWhenTheLastLetsGo) {
    Dummy a, b;
    const int handle = Registry::Register(a);
    Registry::Bind(a);
    const gxtest::LogCapture log;
    EXPECT_EQ(Registry::Hold(handle), a.object());
    EXPECT_TRUE(Registry::Release(a, true));
    EXPECT_TRUE(deleted.empty());
    EXPECT_EQ(Registry::Hold(handle), a.object()) << "found as long as it is there";
    Registry::LetGo(handle);
    EXPECT_TRUE(deleted.empty());
    EXPECT_TRUE(log.texts().empty()) << "holding is silent";
    EXPECT_FALSE(Registry::Release(a, true)) << "it is no binding";
    Registry::LetGo(handle);
    EXPECT_EQ(deleted, std::vector<GxTextObject*>{a});
    EXPECT_EQ(Registry::Hold(handle), nullptr);
    Registry::LetGo(handle);

    const int other = Registry::Register(b);
    Registry::Bind(b);
    Registry::Hold(other);
    Registry::Release(b, true);
    Registry::Bind(b);
    Registry::LetGo(other);
    EXPECT_EQ(deleted.size(), 1u) << "rescued meanwhile";
    Registry::Lock();
    Registry::Hold(other);
    Registry::Release(b, true);
    Registry::LetGo(other);
    EXPECT_EQ(deleted.size(), 1u) << "the lock still holds it back";
    Registry::Hold(other);
    Registry::Unlock();
    EXPECT_EQ(deleted.size(), 1u) << "unlocked, but held";
    Registry::LetGo(other);
    EXPECT_EQ(deleted.size(), 2u);
}

TEST_F(GxTextInstanceManagerTest, TheCallbackMayUseTheRegistry) {
    Dummy a, b, c;
    for (GxTextObject* object : {a.object(), b.object(), c.object()}) Registry::Bind(object);
    Registry::Lock();
    Registry::Release(a, true);
    Registry::Release(b, true);
    whileDeleting = [&](GxTextObject* object) {
        if (object != a) return;
        Registry::Bind(b);
        Registry::Release(c, true);
    };
    Registry::Unlock();
    EXPECT_EQ(deleted, (std::vector<GxTextObject*>{a, c})) << "b rescued, c joined the line";
    whileDeleting = [&](GxTextObject* object) {
        whileDeleting = nullptr;
        Registry::Bind(object);
        EXPECT_TRUE(Registry::Release(object, true));
    };
    EXPECT_TRUE(Registry::Release(b, true));
    EXPECT_FALSE(Registry::Release(b, true)) << "no trace of its binding is left";
}

TEST_F(GxTextInstanceManagerTest, WithoutACallbackNothingIsDeleted) {
    Dummy a, b;
    Registry::SetCallBack(nullptr);
    Registry::Bind(a);
    Registry::Bind(b);
    EXPECT_TRUE(Registry::Release(a, true));
    Registry::Lock();
    EXPECT_TRUE(Registry::Release(b, true));
    Registry::Unlock();
    Registry::SetCallBack(deleteObject);
    Registry::Lock();
    Registry::Unlock();
    EXPECT_TRUE(deleted.empty());
}

TEST_F(GxTextInstanceManagerTest, ReportsWhatItDoesNotKnow) {
    const auto expectLine = [](const char* text, const std::function<void()>& operation) {
        const gxtest::LogCapture log;
        operation();
        EXPECT_EQ(log.texts(), std::vector<std::string>{text});
    };
    expectLine("@ Native Error 9 : 109", [] { EXPECT_FALSE(Registry::Release(0)); });
    expectLine("@ Native Error 9 : 126", [] { EXPECT_FALSE(Registry::Release(nullptr, true)); });
    gxtest::expectSilence([] {
        Registry::Unregister(-7);
        EXPECT_EQ(Registry::FindGxTextHandle(nullptr), -1);
    });
    const char* tag = "GxTextInstanceManager";
    gxtest::expectNativeError(tag, 7, [] { EXPECT_EQ(Registry::Register(nullptr), -1); });
    gxtest::expectNativeError(tag, 7, [] { Registry::Bind(nullptr); });
}

TEST_F(GxTextInstanceManagerTest, SurvivesEveryFailedAllocation) {
    Dummy a;
    const int next = Registry::Register(a) + 1;
    Dummy b;
    EXPECT_EQ(gxtest::failEachAllocation([&] {
                  const int handle = Registry::Register(b);
                  EXPECT_TRUE(handle == next || handle == -1);
                  EXPECT_EQ(Registry::FindGxTextHandle(b), handle);
              }),
              2);
    bool bound = true;
    EXPECT_GT(gxtest::failEachAllocation([&] {
                  EXPECT_TRUE(bound || Error::GetError() == 7);
                  bound = Registry::Bind(b);
              }),
              0);
    EXPECT_TRUE(bound);
    Registry::Lock();
    EXPECT_EQ(gxtest::failEachAllocation([&] {
                  EXPECT_EQ(Registry::Hold(next), b.object());
                  EXPECT_TRUE(Registry::Release(b, true));
                  Registry::LetGo(next);
              }),
              0);
    Registry::Unlock();
    EXPECT_EQ(deleted, std::vector<GxTextObject*>{b});
    Registry::Unregister(next - 1);
}

TEST_F(GxTextInstanceManagerTest, ThreadsRegisterBindAndReleaseAtOnce) {
    static std::atomic<int> released;
    released = 0;
    Registry::SetCallBack([](GxTextObject* object) {
        released++;
        Registry::Unregister(Registry::FindGxTextHandle(object));
    });
    constexpr int kThreads = 4;
    constexpr int kObjects = 200;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; t++) {
        threads.emplace_back([t] {
            std::vector<Dummy> objects(kObjects);
            for (Dummy& object : objects) {
                const int handle = Registry::Register(object);
                Registry::Bind(object);
                Registry::Bind(object);
                EXPECT_EQ(Registry::FindGxTextObject(handle), object.object());
                EXPECT_TRUE(Registry::Release(object, true));
                if (t == 0) Registry::Lock();
                EXPECT_TRUE(Registry::Release(handle));
                if (t == 0) Registry::Unlock();
            }
            Registry::Unlock();
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(released, kThreads * kObjects);
}

}  // namespace
}  // namespace GxFontEffect
