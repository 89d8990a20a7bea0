#include <TovoPlatform/Collections.h>

#include <algorithm>
#include <deque>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

std::string Walk(const CStringList& list)
{
    CString all;
    for (POSITION place = list.GetHeadPosition(); place;)
        all += list.GetNext(place);
    return all.ToUtf8();
}

TEST(Array, GrowsOnlyWhereAskedTo)
{
    CArray<int, int> numbers;
    const auto walk = [&numbers] {
        std::string all;
        for (int i = 0; i < numbers.GetSize(); ++i)
            all += std::to_string(numbers[i]);
        return all;
    };
    EXPECT_EQ(numbers.Add(1), 0);
    numbers.SetAtGrow(3, 4);
    numbers.InsertAt(1, 7, 2);
    numbers.InsertAt(7, 9);
    EXPECT_EQ(walk(), "17700409");
    numbers.RemoveAt(1, 6);
    numbers.InsertAt(1, numbers);
    EXPECT_THROW(numbers.GetAt(4), CInvalidArgException);
    EXPECT_THROW(numbers[-1] = 5, CInvalidArgException);
    EXPECT_THROW(numbers.SetAtGrow(-1, 5), CInvalidArgException);
    EXPECT_THROW(numbers.RemoveAt(3, 2), CInvalidArgException);
    EXPECT_THROW(numbers.InsertAt(-1, 5), CInvalidArgException);
    EXPECT_EQ(walk(), "1199");
}

TEST(StringList, PlacesStayGoodUntilTheirOwnElementGoes)
{
    CStringList list;
    const POSITION b = list.AddTail("b");
    const POSITION a = list.AddHead("a");
    const POSITION c = list.AddTail("c");
    CStringList copy(list), assigned;
    assigned = list;

    list.RemoveAt(b);
    EXPECT_EQ(Walk(list), "ac");
    list.RemoveAt(a);
    list.RemoveAt(c);
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_THROW(list.RemoveAt(nullptr), CInvalidArgException);

    EXPECT_EQ(copy.Find("A"), nullptr);
    for (CStringList* const other : {&copy, &assigned}) {
        other->RemoveAt(other->Find("a"));
        EXPECT_EQ(Walk(*other), "bc") << "a copy has places of its own";
    }
}

// Short lists are searched one by one, longer ones by an index; texts occur more than once.
TEST(StringList, AnswersAsAPlainListDoes)
{
    std::mt19937 random(7);
    CStringList list;
    std::deque<std::pair<std::string, POSITION>> plain;
    const auto find = [&](const std::string& text) {
        const auto found = std::ranges::find(plain, text, &std::pair<std::string, POSITION>::first);
        return found == plain.end() ? nullptr : found->second;
    };
    for (int step = 0; step < 20000; ++step) {
        const std::string text(1, static_cast<char>('a' + random() % 26));
        // Grows and shrinks by turns.
        const unsigned most = step / 500 % 2 ? 5 : 8;
        switch (random() % most) {
        case 0:
            plain.emplace_front(text, list.AddHead(text.c_str()));
            break;
        case 1:
            plain.emplace_back(text, list.AddTail(text.c_str()));
            break;
        case 2: {
            const bool isAbsent = find(text) == nullptr;
            const POSITION added = list.AddHeadIfAbsent(text.c_str());
            ASSERT_EQ(added != nullptr, isAbsent);
            if (isAbsent)
                plain.emplace_front(text, added);
            break;
        }
        default:
            if (!plain.empty() && random() % 2) {
                const auto at = plain.begin() + static_cast<int>(random() % plain.size());
                list.RemoveAt(at->second);
                plain.erase(at);
            }
        }
        ASSERT_EQ(list.Find(text.c_str()), find(text)) << "step " << step;
        ASSERT_EQ(list.GetCount(), static_cast<int>(plain.size()));
    }
    std::string expected;
    for (const auto& [text, place] : plain)
        expected += text;
    EXPECT_EQ(Walk(list), expected);
}

TEST(Map, KeepsOneValueForAKeyAndTheOrderOfInsertion)
{
    CMap<CString, const CString&, int, int> map;
    for (const char* const key : {"z", "m", "a", "z"})
        map.SetAt(key, map.GetCount());
    EXPECT_TRUE(map.RemoveKey("m"));
    int value = -1;
    EXPECT_FALSE(map.Lookup("m", value));
    EXPECT_EQ(value, -1) << "nothing is stored for a missing key";

    std::string walk;
    POSITION place = map.GetStartPosition();
    for (CString key; place;) {
        map.GetNextAssoc(place, key, value);
        walk += key.ToUtf8() + std::to_string(value);
    }
    EXPECT_EQ(walk, "z3a2");
}

} // namespace
