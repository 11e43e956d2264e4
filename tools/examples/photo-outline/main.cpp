// photo-outline: photos grouped by year, then month, then day, kept up to date by
// MCTreeController, with a delegate that prints each change in the order an outline view would
// apply it, and the whole outline after each batch.
//
//   build/bin/photo-outline
//
// ctest runs it and compares what it prints with expected-output.txt next to this file.

#include <vesperon/core/MCTypes.h>
#include <vesperon/trees/MCTreeBuilder.h>
#include <vesperon/trees/MCTreeBuilderRule.h>
#include <vesperon/trees/MCTreeController.h>
#include <vesperon/trees/MCTreeControllerDelegate.h>
#include <vesperon/trees/MCTreeNode.h>

#include <fmt/format.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace {

// --- The application's items --------------------------------------------------------------------

struct Photo {
  std::string name;
  int year, month, day;
};
using PhotoPtr = std::shared_ptr<Photo>;  // items are matched by identity

// --- One node class and one rule class for the three levels -------------------------------------

// A date group remembers its title and sort key from when it was made, so that it keeps its place
// while an updated photo that still stands in it already belongs elsewhere.
class DateGroup : public MCTreeNode<PhotoPtr> {
 public:
  DateGroup(int key, std::string title) : key(key), title(std::move(title)) {}
  const int key;
  const std::string title;
};

enum class Level { Year, Month, Day };

class DateRule : public MCTreeBuilderRule<PhotoPtr> {
 public:
  explicit DateRule(Level level) : level_(level) {}

  NodePtr nodeWithItems(Items items) const override {
    int key = keyOf(*items.front());
    auto group = std::make_shared<DateGroup>(key, titleOf(key));
    group->setItems(std::move(items));
    return group;
  }
  int compare(const PhotoPtr& a, const PhotoPtr& b) const override { return MCCompareValues(keyOf(*a), keyOf(*b)); }
  int compareNode(const NodePtr& a, const NodePtr& b) const override {
    return MCCompareValues(static_cast<DateGroup&>(*a).key, static_cast<DateGroup&>(*b).key);
  }

 private:
  int keyOf(const Photo& p) const {
    switch (level_) {
      case Level::Year: return p.year;
      case Level::Month: return p.month;
      case Level::Day: return p.day;
    }
    return 0;
  }
  std::string titleOf(int key) const {
    static const std::array<const char*, 12> months = {"January", "February", "March",     "April",   "May",      "June",
                                                       "July",    "August",   "September", "October", "November", "December"};
    return level_ == Level::Month ? months.at(size_t(key - 1)) : std::to_string(key);
  }
  Level level_;
};

// --- The outline view's side --------------------------------------------------------------------

// Prints every change as the outline would apply it. Changes inside a group that is not yet in the
// tree are skipped: the group arrives whole when it is inserted.
class OutlinePrinter : public MCTreeControllerDelegate<PhotoPtr> {
 public:
  void controllerWillChangeContent(Controller&) override { fmt::print("begin updates\n"); }
  void controllerDidChangeContent(Controller& controller) override {
    fmt::print("end updates\n");
    printTree(controller.root(), 0);
  }
  void didInsertNodes(Controller& controller, const Nodes& nodes, const MCIndexSet& at, const NodePtr& parent) override {
    if (!isInTree(controller, parent)) return;
    size_t k = 0;
    for (uint64_t row : at) fmt::print("  insert group {} at row {} of {}\n", title(nodes[k++]), row, title(parent));
  }
  void didRemoveNodes(Controller& controller, const Nodes& nodes, const MCIndexSet& at, const NodePtr& parent) override {
    if (!isInTree(controller, parent)) return;
    size_t k = 0;
    for (uint64_t row : at) fmt::print("  remove group {} at row {} of {}\n", title(nodes[k++]), row, title(parent));
  }
  void didInsertItems(Controller& controller, const Items& photos, const MCIndexSet& at, const NodePtr& parent) override {
    if (!isInTree(controller, parent)) return;
    fmt::print("  {} gains {}\n", title(parent), names(photos, at));
  }
  void didRemoveItems(Controller& controller, const Items& photos, const MCIndexSet& at, const NodePtr& parent) override {
    if (!isInTree(controller, parent)) return;
    fmt::print("  {} loses {}\n", title(parent), names(photos, at));
  }

 private:
  // Nodes have no parent link; an outline view knows its rows, here we search from the root.
  static bool isInTree(Controller& controller, const NodePtr& node) { return node->isDescendantOf(controller.root()); }
  static std::string title(const NodePtr& node) {
    auto* group = dynamic_cast<DateGroup*>(node.get());
    return group ? group->title : "All Photos";
  }
  static std::string names(const Items& photos, const MCIndexSet& at) {
    std::string text;
    size_t k = 0;
    for (uint64_t index : at) text += fmt::format("{}{} (#{})", text.empty() ? "" : ", ", photos[k++]->name, index);
    return text;
  }
  static void printTree(const NodePtr& node, int depth) {
    fmt::print("{:{}}{} [{}]\n", "", depth * 2, title(node), node->countOfItems());
    for (const auto& child : node->nodes()) printTree(child, depth + 1);
  }
};

}  // namespace

// --- Putting it together ------------------------------------------------------------------------

int main() {
  auto builder = std::make_shared<MCTreeBuilder<PhotoPtr>>(MCTreeBuilder<PhotoPtr>::Rules{
      std::make_shared<DateRule>(Level::Year), std::make_shared<DateRule>(Level::Month),
      std::make_shared<DateRule>(Level::Day)});

  auto beach = std::make_shared<Photo>(Photo{"beach.jpg", 2023, 7, 14});
  auto dunes = std::make_shared<Photo>(Photo{"dunes.jpg", 2023, 7, 14});
  auto snow = std::make_shared<Photo>(Photo{"snow.jpg", 2024, 1, 3});
  MCTreeController<PhotoPtr> controller(builder, {beach, dunes, snow});
  auto printer = std::make_shared<OutlinePrinter>();
  controller.setDelegate(printer);

  // A photo from a day already shown, and one that opens a new month.
  auto sunset = std::make_shared<Photo>(Photo{"sunset.jpg", 2023, 7, 14});
  auto tulips = std::make_shared<Photo>(Photo{"tulips.jpg", 2024, 4, 20});
  controller.insertItems({sunset, tulips});

  // The camera's clock was wrong: the snow photo was taken a year earlier.
  snow->year = 2023;
  controller.updateItems({snow});

  // Deleting the last photo of April 2024 takes its day, its month and its year away.
  controller.removeItems({tulips});

  return 0;
}
