#include "base/List.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

#include "base/Error.h"
#include "support/AllocationFailure.h"
#include "support/LogCapture.h"
#include "support/Random.h"

namespace GxFontEffect {
namespace {

using gxtest::LogCapture;

int items[32];
void* const A = &items[0];
void* const B = &items[1];
void* const C = &items[2];

// Failures of this class leave a code and no line.
void expectError(int code, const std::function<void()>& operation) {
    Error::SetError(0);
    const LogCapture log;
    operation();
    EXPECT_EQ(Error::GetError(), code);
    EXPECT_TRUE(log.lines().empty());
}

std::vector<void*> contents(const List& list) {
    std::vector<void*> result;
    result.reserve(static_cast<size_t>(list.GetCount()));
    for (int i = 0; i < list.GetCount(); i++) result.push_back(list.Get(i));
    return result;
}

class ListTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(list.Construct()); }
    void fill(const std::vector<void*>& wanted) {
        ASSERT_TRUE(list.RemoveAll());
        for (void* item : wanted) ASSERT_TRUE(list.Add(item));
    }

    List list;
};

TEST_F(ListTest, EveryOperationNeedsConstruct) {
    List bare;
    expectError(8, [&] {
        EXPECT_FALSE(bare.Add(A) || bare.Add(&list) || bare.Insert(A, 0) || bare.Remove(A) ||
                     bare.Remove(0) || bare.Remove(0, 1) || bare.RemoveAll() ||
                     bare.IsContained(A) || bare.IsContained(&list) || bare.NextData(1) ||
                     bare.PrevData(1) || bare.MoveFirst(1) || bare.MoveLast(1) || bare.Move(1, 0));
    });
    for (const auto& operation : std::vector<std::function<void()>>{
             [&] { EXPECT_EQ(bare.GetCount(), -1); }, [&] { EXPECT_EQ(bare.Get(0), nullptr); },
             [&] { EXPECT_EQ(bare.GetIndex(A), -1); },
             [&] { EXPECT_EQ(bare.BeginTraversal(), -1); },
             [&] { EXPECT_EQ(bare.GetData(1), nullptr); },
             [&] { EXPECT_FALSE(bare.EndTraversal(1)); }}) {
        expectError(8, operation);
    }
}

TEST_F(ListTest, ConstructsFromListsAndArrays) {
    void* array[] = {A, nullptr, B};
    List fromArray, fromList, bare, none;
    ASSERT_TRUE(fromArray.Construct(array, 3));
    ASSERT_TRUE(fromList.Construct(&fromArray));
    ASSERT_TRUE(none.Construct(array, 0));
    EXPECT_EQ(contents(fromList), (std::vector<void*>{A, nullptr, B}));
    EXPECT_EQ(none.GetCount(), 0);
    expectError(4, [&] { EXPECT_FALSE(list.Construct()); });
    expectError(4, [&] { EXPECT_FALSE(list.Construct(&fromArray)); });
    expectError(4, [&] { EXPECT_FALSE(list.Construct(array, 3)); });
    List fresh;
    expectError(7, [&] { EXPECT_FALSE(fresh.Construct(static_cast<const List*>(nullptr))); });
    expectError(7, [&] { EXPECT_FALSE(fresh.Construct(&bare)); });
    expectError(7, [&] { EXPECT_FALSE(fresh.Construct(nullptr, 2)); });
    expectError(7, [&] { EXPECT_FALSE(fresh.Construct(array, -1)); });
    EXPECT_TRUE(fresh.Construct());
}

TEST_F(ListTest, NullItemsAreFoundButNotRemoved) {
    fill({A, nullptr, B});
    EXPECT_EQ(list.GetIndex(nullptr), 1);
    expectError(7, [&] { EXPECT_FALSE(list.Remove(nullptr)); });
    expectError(7, [&] { EXPECT_FALSE(list.Add(static_cast<const List*>(nullptr))); });
}

TEST_F(ListTest, ContainsAListWhoseItemsAreAllThere) {
    fill({A, B});
    List other;
    ASSERT_TRUE(other.Construct());
    EXPECT_TRUE(list.IsContained(&other));
    other.Add(B);
    for (int i = 0; i < List::kMaxTraversals; i++) ASSERT_NE(other.BeginTraversal(), -1);
    EXPECT_TRUE(list.IsContained(&other)) << "needs no free cursor";
    other.Add(C);
    EXPECT_FALSE(list.IsContained(&other));
    expectError(7, [&] { EXPECT_FALSE(list.IsContained(static_cast<const List*>(nullptr))); });
}

TEST_F(ListTest, CookiesThatAreNotOpenHereAreRefused) {
    List other;
    ASSERT_TRUE(other.Construct());
    const long foreign = other.BeginTraversal();
    const long ended = list.BeginTraversal();
    ASSERT_TRUE(list.EndTraversal(ended));
    for (long cookie : {0L, -1L, 12345L, foreign, ended}) {
        expectError(7, [&] { EXPECT_EQ(list.GetData(cookie), nullptr); });
        expectError(7, [&] { EXPECT_FALSE(list.NextData(cookie)); });
        expectError(7, [&] { EXPECT_FALSE(list.PrevData(cookie)); });
        expectError(7, [&] { EXPECT_FALSE(list.MoveFirst(cookie)); });
        expectError(7, [&] { EXPECT_FALSE(list.MoveLast(cookie)); });
        expectError(7, [&] { EXPECT_FALSE(list.Move(cookie, 0)); });
        expectError(7, [&] { EXPECT_FALSE(list.EndTraversal(cookie)); });
    }
    EXPECT_TRUE(other.EndTraversal(foreign));
}

TEST_F(ListTest, SurvivesEveryFailedAllocation) {
    void* array[] = {A, B, C};
    gxtest::failEachAllocation([&] {
        List copy;
        if (copy.Construct(array, 3)) return;
        EXPECT_EQ(Error::GetError(), 7);
        EXPECT_EQ(copy.GetCount(), -1);
    });
    fill({A, B, C});
    List target;
    ASSERT_TRUE(target.Construct());
    EXPECT_EQ(gxtest::failEachAllocation([&] {
                  const int wanted = target.Add(&list) ? 3 : 0;
                  EXPECT_EQ(target.GetCount(), wanted) << "all or nothing";
              }),
              3);
    EXPECT_EQ(target.GetCount(), 3);
}

// A list beside a plain vector; a cursor is an index that follows its item, or nothing past the
// end. Every failed operation has its code.
class Model {
public:
    explicit Model(uint32_t seed) : random(seed) { EXPECT_TRUE(list.Construct()); }

    void step() {
        const int count = static_cast<int>(items_.size());
        const int at = random.between(-1, count + 1);
        void* item = &items[random.between(0, 31)];
        switch (random.between(0, 12)) {
            case 0:
            case 1:
                insert(item, count);
                expect(0, [&] { return list.Add(item); });
                break;
            case 2:
            case 3:
                if (at >= 0) insert(item, std::min(at, count));
                expect(at < 0 ? 7 : 0, [&] { return list.Insert(item, at); });
                break;
            case 4:
                expect(isIndex(at) ? 0 : 3, [&] { return list.Remove(at); });
                if (isIndex(at)) erase(at);
                break;
            case 5:
                expect(count == 0 ? 7 : 0, [&] { return list.Remove(item); });
                if (indexOf(item) >= 0) erase(indexOf(item));
                break;
            case 6: {
                const int span = random.between(-1, count + 1);
                const bool fits = isIndex(at) && span >= 0 && span <= count;
                expect(fits ? 0 : 3, [&] { return list.Remove(at, span); });
                for (int i = 0; fits && i < span && isIndex(at); i++) erase(at);
                break;
            }
            case 7:
                appendOrEmpty();
                break;
            case 8:
                begin();
                break;
            default:
                moveCursor(at);
        }
    }

    void check() {
        ASSERT_EQ(contents(list), items_);
        for (const Cursor& cursor : cursors_) {
            ASSERT_EQ(list.GetData(cursor.cookie), cursor.at ? items_[*cursor.at] : nullptr);
        }
        void* item = &items[random.between(0, 31)];
        const int index = indexOf(item);
        expectError(index < 0 ? 9 : 0, [&] { EXPECT_EQ(list.GetIndex(item), index); });
        EXPECT_EQ(list.IsContained(item), index >= 0);
        const int outside = random.oneIn(2) ? -1 : static_cast<int>(items_.size());
        expectError(3, [&] { EXPECT_EQ(list.Get(outside), nullptr); });
    }

    gxtest::Random random;

private:
    struct Cursor {
        long cookie;
        std::optional<size_t> at;
    };

    static void expect(int code, const std::function<bool()>& operation) {
        expectError(code, [&] { EXPECT_EQ(operation(), code == 0); });
    }

    bool isIndex(int at) const { return at >= 0 && at < static_cast<int>(items_.size()); }

    int indexOf(void* item) const {
        const auto found = std::find(items_.begin(), items_.end(), item);
        return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
    }

    void insert(void* item, int at) {
        items_.insert(items_.begin() + at, item);
        for (Cursor& cursor : cursors_) {
            if (cursor.at && *cursor.at >= static_cast<size_t>(at)) ++*cursor.at;
        }
    }

    // The whole list behind itself, or none of it.
    void appendOrEmpty() {
        if (items_.size() < 20 && random.oneIn(2)) {
            const std::vector<void*> copy = items_;
            items_.insert(items_.end(), copy.begin(), copy.end());
            expect(0, [&] { return list.Add(&list); });
        } else if (random.oneIn(4)) {
            items_.clear();
            for (Cursor& cursor : cursors_) cursor.at.reset();
            expect(0, [&] { return list.RemoveAll(); });
        }
    }

    void erase(int index) {
        const size_t at = static_cast<size_t>(index);
        items_.erase(items_.begin() + index);
        Cursor* moved = nullptr;
        for (Cursor& cursor : cursors_) {
            if (!cursor.at || *cursor.at < at) continue;
            if (*cursor.at > at) {
                --*cursor.at;
            } else if (!moved || cursor.cookie < moved->cookie) {  // slots lie in address order
                if (moved) moved->at.reset();
                moved = &cursor;
            } else {
                cursor.at.reset();
            }
        }
        if (moved && at == items_.size()) moved->at.reset();
    }

    std::optional<size_t> head() const {
        return items_.empty() ? std::nullopt : std::optional<size_t>(0);
    }

    void begin() {
        const bool isFree = cursors_.size() < 10;
        long cookie = -1;
        expect(isFree ? 0 : 2, [&] { return (cookie = list.BeginTraversal()) != -1; });
        if (isFree) cursors_.push_back({cookie, head()});
    }

    void moveCursor(int target) {
        if (cursors_.empty()) return;
        const int which = random.between(0, static_cast<int>(cursors_.size()) - 1);
        Cursor& cursor = cursors_[static_cast<size_t>(which)];
        const int pastTheEnd = cursor.at ? 0 : 9;
        const std::optional<size_t> last =
            items_.empty() ? std::nullopt : std::optional(items_.size() - 1);
        switch (random.between(0, 5)) {
            case 0:
                expect(pastTheEnd, [&] { return list.NextData(cursor.cookie); });
                cursor.at = !cursor.at         ? head()
                            : cursor.at < last ? std::optional(*cursor.at + 1)
                                               : std::nullopt;
                break;
            case 1:
                expect(pastTheEnd, [&] { return list.PrevData(cursor.cookie); });
                cursor.at = !cursor.at       ? head()
                            : *cursor.at > 0 ? std::optional(*cursor.at - 1)
                                             : std::nullopt;
                break;
            case 2:
                expect(0, [&] { return list.MoveFirst(cursor.cookie); });
                cursor.at = head();
                break;
            case 3:
                expect(0, [&] { return list.MoveLast(cursor.cookie); });
                cursor.at = last;
                break;
            case 4:
                expect(isIndex(target) ? 0 : 3, [&] { return list.Move(cursor.cookie, target); });
                if (isIndex(target)) cursor.at = static_cast<size_t>(target);
                break;
            default:
                expect(0, [&] { return list.EndTraversal(cursor.cookie); });
                cursors_.erase(cursors_.begin() + which);
        }
    }

    List list;
    std::vector<void*> items_;
    std::vector<Cursor> cursors_;
};

TEST(ListModel, AgreesWithAVectorUnderRandomOperations) {
    for (uint32_t seed = 1; seed <= 20 && !testing::Test::HasFailure(); seed++) {
        Model model(seed);
        GX_TRACE_SEED(model.random);
        for (int i = 0; i < 400 && !testing::Test::HasFailure(); i++) {
            model.step();
            model.check();
        }
    }
}

}  // namespace
}  // namespace GxFontEffect
