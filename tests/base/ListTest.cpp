#include "base/List.h"

#include <gtest/gtest.h>

#include <climits>
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
void* const D = &items[3];

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
    const std::vector<std::function<void()>> operations = {
        [&] { EXPECT_FALSE(bare.Add(A)); },
        [&] { EXPECT_FALSE(bare.Add(&list)); },
        [&] { EXPECT_FALSE(bare.Insert(A, 0)); },
        [&] { EXPECT_FALSE(bare.Remove(A)); },
        [&] { EXPECT_FALSE(bare.Remove(0)); },
        [&] { EXPECT_FALSE(bare.Remove(0, 1)); },
        [&] { EXPECT_FALSE(bare.RemoveAll()); },
        [&] { EXPECT_EQ(bare.GetCount(), -1); },
        [&] { EXPECT_EQ(bare.Get(0), nullptr); },
        [&] { EXPECT_EQ(bare.GetIndex(A), -1); },
        [&] { EXPECT_FALSE(bare.IsContained(A)); },
        [&] { EXPECT_FALSE(bare.IsContained(&list)); },
        [&] { EXPECT_EQ(bare.BeginTraversal(), -1); },
        [&] { EXPECT_EQ(bare.GetData(1), nullptr); },
        [&] { EXPECT_FALSE(bare.NextData(1)); },
        [&] { EXPECT_FALSE(bare.PrevData(1)); },
        [&] { EXPECT_FALSE(bare.MoveFirst(1)); },
        [&] { EXPECT_FALSE(bare.MoveLast(1)); },
        [&] { EXPECT_FALSE(bare.Move(1, 0)); },
        [&] { EXPECT_FALSE(bare.EndTraversal(1)); },
    };
    for (const auto& operation : operations) expectError(8, operation);
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

TEST_F(ListTest, AddsInsertsAndAppendsWholeLists) {
    fill({A, B});
    EXPECT_TRUE(list.Insert(C, 0));
    EXPECT_TRUE(list.Insert(D, 3));
    EXPECT_TRUE(list.Insert(D, INT_MAX));
    EXPECT_EQ(contents(list), (std::vector<void*>{C, A, B, D, D}));
    expectError(7, [&] { EXPECT_FALSE(list.Insert(A, -1)); });
    fill({A, B});
    EXPECT_TRUE(list.Add(&list));
    EXPECT_EQ(contents(list), (std::vector<void*>{A, B, A, B}));
    expectError(7, [&] { EXPECT_FALSE(list.Add(static_cast<const List*>(nullptr))); });
}

TEST_F(ListTest, RemovesByItemIndexAndRange) {
    fill({A, B, A, C});
    EXPECT_TRUE(list.Remove(A));
    EXPECT_EQ(contents(list), (std::vector<void*>{B, A, C}));
    EXPECT_TRUE(list.Remove(D));
    EXPECT_TRUE(list.Remove(1));
    EXPECT_EQ(contents(list), (std::vector<void*>{B, C}));
    expectError(7, [&] { EXPECT_FALSE(list.Remove(nullptr)); });
    expectError(3, [&] { EXPECT_FALSE(list.Remove(2)); });
    expectError(3, [&] { EXPECT_FALSE(list.Remove(-1)); });
    EXPECT_TRUE(list.Remove(0, 0));
    expectError(3, [&] { EXPECT_FALSE(list.Remove(-1, 1)); });
    expectError(3, [&] { EXPECT_FALSE(list.Remove(2, 0)); });
    expectError(3, [&] { EXPECT_FALSE(list.Remove(0, -1)); });
    expectError(3, [&] { EXPECT_FALSE(list.Remove(0, 3)); });
    EXPECT_EQ(list.GetCount(), 2);
    Error::SetError(0);
    EXPECT_TRUE(list.Remove(1, 2)) << "stops at the end";
    EXPECT_EQ(Error::GetError(), 0);
    EXPECT_EQ(contents(list), (std::vector<void*>{B}));
    EXPECT_TRUE(list.RemoveAll());
    EXPECT_EQ(list.GetCount(), 0);
    expectError(7, [&] { EXPECT_FALSE(list.Remove(A)); });
}

TEST_F(ListTest, FindsItems) {
    fill({A, nullptr, B, A});
    EXPECT_EQ(list.GetIndex(nullptr), 1);
    EXPECT_EQ(list.GetIndex(A), 0);
    const long cursor = list.BeginTraversal();
    list.Move(cursor, 2);
    EXPECT_EQ(list.GetIndex(A), 0) << "the first one, wherever a cursor stands";
    expectError(9, [&] { EXPECT_EQ(list.GetIndex(C), -1); });
    EXPECT_TRUE(list.IsContained(B));
    EXPECT_FALSE(list.IsContained(C));
    expectError(3, [&] { EXPECT_EQ(list.Get(4), nullptr); });
    expectError(3, [&] { EXPECT_EQ(list.Get(-1), nullptr); });

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

TEST_F(ListTest, TraversesBothWaysAndStartsAgainFromPastTheEnd) {
    fill({A, B});
    const long cursor = list.BeginTraversal();
    EXPECT_EQ(list.GetData(cursor), A);
    EXPECT_TRUE(list.NextData(cursor));
    EXPECT_EQ(list.GetData(cursor), B);
    EXPECT_TRUE(list.NextData(cursor));
    EXPECT_EQ(list.GetData(cursor), nullptr);
    expectError(9, [&] { EXPECT_FALSE(list.NextData(cursor)); });
    EXPECT_EQ(list.GetData(cursor), A);
    EXPECT_TRUE(list.PrevData(cursor));
    EXPECT_EQ(list.GetData(cursor), nullptr);
    expectError(9, [&] { EXPECT_FALSE(list.PrevData(cursor)); });
    EXPECT_EQ(list.GetData(cursor), A);
    EXPECT_TRUE(list.MoveLast(cursor));
    EXPECT_EQ(list.GetData(cursor), B);
    EXPECT_TRUE(list.PrevData(cursor));
    EXPECT_EQ(list.GetData(cursor), A);
    EXPECT_TRUE(list.Move(cursor, 1));
    EXPECT_EQ(list.GetData(cursor), B);
    EXPECT_TRUE(list.MoveFirst(cursor));
    EXPECT_EQ(list.GetData(cursor), A);
    expectError(3, [&] { EXPECT_FALSE(list.Move(cursor, 2)); });
    expectError(3, [&] { EXPECT_FALSE(list.Move(cursor, -1)); });
    EXPECT_TRUE(list.EndTraversal(cursor));
}

TEST_F(ListTest, TenTraversalsAtATime) {
    fill({A});
    std::vector<long> cursors;
    for (int i = 0; i < 10; i++) {
        cursors.push_back(list.BeginTraversal());
        EXPECT_NE(cursors.back(), -1);
    }
    expectError(2, [&] { EXPECT_EQ(list.BeginTraversal(), -1); });
    EXPECT_TRUE(list.EndTraversal(cursors[3]));
    EXPECT_NE(list.BeginTraversal(), -1);
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

TEST_F(ListTest, RemovingTheItemUnderACursorMovesItOn) {
    fill({A, B, C});
    const long first = list.BeginTraversal();
    const long second = list.BeginTraversal();
    list.NextData(first);
    list.NextData(second);
    EXPECT_TRUE(list.Remove(B));
    EXPECT_EQ(list.GetData(first), C);
    EXPECT_EQ(list.GetData(second), nullptr) << "only one cursor is carried over";
    EXPECT_TRUE(list.Remove(C));
    EXPECT_EQ(list.GetData(first), nullptr);
    list.MoveFirst(first);
    EXPECT_TRUE(list.RemoveAll());
    EXPECT_EQ(list.GetData(first), nullptr);
    list.Add(D);
    expectError(9, [&] { EXPECT_FALSE(list.NextData(first)); });
    EXPECT_EQ(list.GetData(first), D);
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
// end.
class Model {
public:
    explicit Model(uint32_t seed) : random(seed) { EXPECT_TRUE(list.Construct()); }

    void step() {
        const int count = static_cast<int>(items_.size());
        const int at = random.between(-1, count + 1);
        void* item = &items[random.between(0, 31)];
        switch (random.between(0, 10)) {
            case 0:
            case 1:
                insert(item, count);
                EXPECT_TRUE(list.Add(item));
                break;
            case 2:
            case 3:
                if (at >= 0) insert(item, std::min(at, count));
                EXPECT_EQ(list.Insert(item, at), at >= 0);
                break;
            case 4:
                EXPECT_EQ(list.Remove(at), isIndex(at));
                if (isIndex(at)) erase(at);
                break;
            case 5: {
                EXPECT_EQ(list.Remove(item), count > 0);
                const auto found = std::find(items_.begin(), items_.end(), item);
                if (found != items_.end()) erase(static_cast<int>(found - items_.begin()));
                break;
            }
            case 6:
                begin();
                break;
            default:
                moveCursor(at);
        }
    }

    void check() {
        ASSERT_EQ(list.GetCount(), static_cast<int>(items_.size()));
        for (size_t i = 0; i < items_.size(); i++) {
            ASSERT_EQ(list.Get(static_cast<int>(i)), items_[i]) << i;
        }
        for (const Cursor& cursor : cursors_) {
            ASSERT_EQ(list.GetData(cursor.cookie), cursor.at ? items_[*cursor.at] : nullptr);
        }
        void* item = &items[random.between(0, 31)];
        const auto found = std::find(items_.begin(), items_.end(), item);
        ASSERT_EQ(list.GetIndex(item),
                  found == items_.end() ? -1 : static_cast<int>(found - items_.begin()));
    }

    gxtest::Random random;

private:
    struct Cursor {
        long cookie;
        std::optional<size_t> at;
    };

    bool isIndex(int at) const { return at >= 0 && at < static_cast<int>(items_.size()); }

    void insert(void* item, int at) {
        items_.insert(items_.begin() + at, item);
        for (Cursor& cursor : cursors_) {
            if (cursor.at && *cursor.at >= static_cast<size_t>(at)) ++*cursor.at;
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
        const long cookie = list.BeginTraversal();
        EXPECT_EQ(cookie != -1, cursors_.size() < 10);
        if (cookie != -1) cursors_.push_back({cookie, head()});
    }

    void moveCursor(int target) {
        if (cursors_.empty()) return;
        const int which = random.between(0, static_cast<int>(cursors_.size()) - 1);
        Cursor& cursor = cursors_[static_cast<size_t>(which)];
        const bool on = cursor.at.has_value();
        switch (random.between(0, 5)) {
            case 0:
                EXPECT_EQ(list.NextData(cursor.cookie), on);
                cursor.at = !on                              ? head()
                            : *cursor.at + 1 < items_.size() ? std::optional<size_t>(*cursor.at + 1)
                                                             : std::nullopt;
                break;
            case 1:
                EXPECT_EQ(list.PrevData(cursor.cookie), on);
                cursor.at = !on              ? head()
                            : *cursor.at > 0 ? std::optional<size_t>(*cursor.at - 1)
                                             : std::nullopt;
                break;
            case 2:
                EXPECT_TRUE(list.MoveFirst(cursor.cookie));
                cursor.at = head();
                break;
            case 3:
                EXPECT_TRUE(list.MoveLast(cursor.cookie));
                cursor.at = head();
                if (cursor.at) cursor.at = items_.size() - 1;
                break;
            case 4:
                EXPECT_EQ(list.Move(cursor.cookie, target), isIndex(target));
                if (isIndex(target)) cursor.at = static_cast<size_t>(target);
                break;
            default:
                EXPECT_TRUE(list.EndTraversal(cursor.cookie));
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
