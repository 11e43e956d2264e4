#include <vesperon/core/MCObservableArray.h>
#include <vesperon/core/MCObservableProperty.h>
#include <vesperon/core/MCValueObserver.h>

#include <gtest/gtest.h>

#include "../support/ThrownMessage.h"

#include <memory>
#include <string>
#include <vector>

namespace {
class Album : public MCObservableObject {
 public:
  MCObservableProperty<std::string> title{*this, "title"};
  MCObservableArray<int> photos{*this, "photos"};
};

using List = std::vector<int>;

// Records every callback of one observer as text, so that a test sees exactly what was called.
struct Recorder {
  std::vector<std::string> calls;
  static std::string text(const List& v) {
    std::string s;
    for (int x : v) s += (s.empty() ? "" : ",") + std::to_string(x);
    return "[" + s + "]";
  }
  static std::string text(const MCIndexSet& set) {
    List v;
    for (auto i : set) v.push_back(int(i));
    return text(v);
  }
  void attach(MCValueObserver<List>& observer) {
    observer.setOnSet([this](const List& o, const List& n) { calls.push_back("set " + text(o) + " " + text(n)); });
    observer.setOnInsert([this](const List& n, const MCIndexSet& i) { calls.push_back("insert " + text(n) + " " + text(i)); });
    observer.setOnRemove([this](const List& o, const MCIndexSet& i) { calls.push_back("remove " + text(o) + " " + text(i)); });
    observer.setOnReplace([this](const List& o, const List& n, const MCIndexSet& i) {
      calls.push_back("replace " + text(o) + " " + text(n) + " " + text(i));
    });
  }
};
}  // namespace

TEST(MCValueObserver, PropertySettingCallsOnSetWithBothValuesOnly) {
  auto album = std::make_shared<Album>();
  MCValueObserver<std::string> observer(album, "title");
  std::vector<std::pair<std::string, std::string>> sets;
  int others = 0;
  observer.setOnSet([&](const std::string& o, const std::string& n) { sets.push_back({o, n}); });
  observer.setOnInsert([&](const std::string&, const MCIndexSet&) { ++others; });
  album->title.set("Holidays");
  album->title = "Holidays";  // an assignment of the same value is still a change
  EXPECT_EQ(sets, (std::vector<std::pair<std::string, std::string>>{{"", "Holidays"}, {"Holidays", "Holidays"}}));
  EXPECT_EQ(others, 0);
}

TEST(MCValueObserver, ArrayAccessorsRaiseExactlyTheFourKinds) {
  auto album = std::make_shared<Album>();
  MCValueObserver<List> observer(album, "photos");
  Recorder recorder;
  recorder.attach(observer);

  album->photos.setArray({1, 2, 3});
  album->photos.insertObject(9, 1);
  album->photos.addObjects({7, 8});
  album->photos.insertObjects({5, 6}, MCIndexSet{0, 3});
  album->photos.removeObjectAtIndex(0);
  album->photos.replaceObjectAtIndex(1, 4);
  album->photos.removeObjectsAtIndexes(MCIndexSet{0, 5});
  album->photos.replaceObjectsAtIndexes(MCIndexSet{0, 2}, {10, 20});
  album->photos.removeObject(99);  // absent: no change, no call
  album->photos.removeObjectsAtIndexes(MCIndexSet());
  album->photos.removeAllObjects();
  album->photos.removeAllObjects();

  EXPECT_EQ(recorder.calls, (std::vector<std::string>{
                                "set [] [1,2,3]",
                                "insert [9] [1]",
                                "insert [7,8] [4,5]",
                                "insert [5,6] [0,3]",          // 5,1,9,6,2,3,7,8
                                "remove [5] [0]",              // 1,9,6,2,3,7,8
                                "replace [9] [4] [1]",         // 1,4,6,2,3,7,8
                                "remove [1,7] [0,5]",          // 4,6,2,3,8
                                "replace [4,2] [10,20] [0,2]", // 10,6,20,3,8
                                "remove [10,6,20,3,8] [0,1,2,3,4]",
                            }));
  EXPECT_TRUE(album->photos.empty());
}

TEST(MCValueObserver, BadIndexesChangeNothingAndRaise) {
  auto album = std::make_shared<Album>();
  album->photos.setArray({1, 2});
  MCValueObserver<List> observer(album, "photos");
  Recorder recorder;
  recorder.attach(observer);
  EXPECT_EQ(thrownMessage<std::out_of_range>([&] { album->photos.insertObject(3, 3); }),
            "*** MCObservableArray::insertObject: index 3 is out of range [0..2]");
  EXPECT_THROW(album->photos.removeObjectAtIndex(2), std::out_of_range);
  EXPECT_THROW(album->photos.replaceObjectAtIndex(NSNotFound, 0), std::out_of_range);
  EXPECT_THROW(album->photos.removeObjectsAtIndexes(MCIndexSet{1, 2}), std::out_of_range);
  EXPECT_THROW(album->photos.insertObjects({1, 2}, MCIndexSet{0, 5}), std::out_of_range);
  EXPECT_EQ(album->photos.array(), (List{1, 2}));
  EXPECT_TRUE(recorder.calls.empty());
}

TEST(MCValueObserver, EndsWithTheObserverAndHoldsTheObjectWeakly) {
  auto album = std::make_shared<Album>();
  int calls = 0;
  {
    MCValueObserver<std::string> observer(album, "title");
    observer.setOnSet([&](const std::string&, const std::string&) { ++calls; });
    album->title.set("a");
    EXPECT_EQ(album->observerCount("title"), 1u);
  }
  album->title.set("b");
  EXPECT_EQ(calls, 1) << "a change after the observer went calls nothing";
  EXPECT_EQ(album->observerCount("title"), 0u);

  // A change of a kind with no callback set does nothing; a change of another key path neither.
  MCValueObserver<List> quiet(album, "photos");
  album->photos.addObject(1);
  MCValueObserver<std::string> other(album, "subtitle");
  other.setOnSet([&](const std::string&, const std::string&) { ++calls; });
  album->title.set("c");
  EXPECT_EQ(calls, 1);

  // The observer does not keep the object alive, and outlives it safely.
  std::weak_ptr<Album> weak = album;
  album.reset();
  EXPECT_TRUE(weak.expired());
  EXPECT_EQ(quiet.object(), nullptr);
}

TEST(MCValueObserver, AnObserverDestroyedDuringAChangeIsNotCalledAgain) {
  auto album = std::make_shared<Album>();
  auto first = std::make_unique<MCValueObserver<std::string>>(album, "title");
  auto second = std::make_unique<MCValueObserver<std::string>>(album, "title");
  int secondCalls = 0;
  first->setOnSet([&](const std::string&, const std::string&) { second.reset(); });
  second->setOnSet([&](const std::string&, const std::string&) { ++secondCalls; });
  album->title.set("x");
  EXPECT_EQ(secondCalls, 0);
  EXPECT_EQ(second, nullptr);
}
