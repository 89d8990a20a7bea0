#include <TovoPlatform/Collections.h>

#include <string>

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
