#include <TovoPlatform/Collections.h>

#include <iterator>
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

using Numbers = CArray<int, int>;

std::string Walk(const Numbers& numbers)
{
    std::string all;
    for (int i = 0; i < numbers.GetSize(); ++i)
        all += std::to_string(numbers[i]);
    return all;
}

TEST(Array, GrowsOnlyWhereAskedTo)
{
    Numbers numbers;
    EXPECT_EQ(numbers.Add(1), 0);
    numbers.SetAtGrow(3, 4);
    numbers.InsertAt(1, 7, 2);
    numbers.InsertAt(7, 9);
    EXPECT_EQ(Walk(numbers), "17700409");
    numbers.RemoveAt(1, 6);
    numbers.InsertAt(1, numbers);
    EXPECT_EQ(Walk(numbers), "1199");
}

TEST(Array, PlacesOutsideThrowAndChangeNothing)
{
    using Use = void (*)(Numbers&);
    const Use uses[] = {
        [](Numbers& all) { all.GetAt(2); },       [](Numbers& all) { all[-1] = 5; },
        [](Numbers& all) { all.SetAt(2, 5); },    [](Numbers& all) { all.SetAtGrow(-1, 5); },
        [](Numbers& all) { all.RemoveAt(1, 2); }, [](Numbers& all) { all.InsertAt(-1, 5); }};
    for (std::size_t i = 0; i < std::size(uses); ++i) {
        Numbers numbers;
        numbers.SetSize(2);
        EXPECT_THROW(uses[i](numbers), CInvalidArgException) << "use " << i;
        EXPECT_EQ(Walk(numbers), "00") << "use " << i;
    }
}

TEST(StringList, PlacesStayGoodUntilTheirOwnElementGoes)
{
    CStringList list;
    const POSITION b = list.AddTail("b");
    const POSITION a = list.AddHead("a");
    const POSITION c = list.AddTail("c");
    EXPECT_EQ(Walk(list), "abc");
    EXPECT_EQ(list.Find("c"), c);
    EXPECT_EQ(list.Find("C"), nullptr);

    list.RemoveAt(b);
    EXPECT_EQ(Walk(list), "ac");
    EXPECT_EQ(list.GetAt(a), "a");
    list.RemoveAt(a);
    EXPECT_EQ(list.GetHeadPosition(), c);
    list.RemoveAt(c);
    POSITION none = list.GetHeadPosition();
    EXPECT_EQ(none, nullptr);
    EXPECT_THROW(list.GetNext(none), CInvalidArgException);
    EXPECT_THROW(list.RemoveAt(none), CInvalidArgException);
}

TEST(StringList, ACopyHasPlacesOfItsOwn)
{
    CStringList list;
    list.AddTail("a");
    list.AddTail("b");
    CStringList copy(list);
    CStringList assigned;
    assigned = list;
    list.RemoveAll();
    for (CStringList* const other : {&copy, &assigned}) {
        other->RemoveAt(other->Find("a"));
        EXPECT_EQ(Walk(*other), "b");
    }
}

TEST(Map, KeepsOneValueForAKeyAndTheOrderOfInsertion)
{
    CMap<CString, const CString&, int, int> map;
    map.SetAt("z", 1);
    map.SetAt("m", 2);
    map.SetAt("a", 3);
    map.SetAt("z", 4);
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
    EXPECT_EQ(walk, "z4a3");
}

} // namespace
