#include "BrowseFilter.h"

#include <vesperon/catalogue/MCCatalogue.h>

#include "../MediaFiles.h"

#include <vesperon/controls/MCPopUpModel.h>
#include <vesperon/predicates/MCPredicateEditorBuilder.h>

namespace {

using Type = MCPredicateOperatorType;

MCSections<MCPredicate::Operator> operators(std::initializer_list<Type> types) {
  std::vector<MCPredicate::Operator> out;
  for (Type type : types) out.push_back({int(type), std::nullopt});
  return {out};
}

}  // namespace

BrowseFilter::BrowseFilter() {
  MCPredicateEditorBuilder builder(true);
  builder.addTextFieldTemplate({"name", "Name"}, "part of the name", withIsEmptyOperators);
  builder.addTextFieldTemplate({"{TIFF}.Model", "Camera model"}, "part of the model", withIsEmptyOperators);
  builder.addDatePickerTemplate({"{Exif}.DateTimeOriginal", "Capture date"});
  builder.addFileSizeTemplate({"size", "File size"}, operators({Type::GreaterThan, Type::LessThan}));
  builder.addNumberTemplate({"{Exif}.ISOSpeedRatings", "ISO"},
                            operators({Type::GreaterThanOrEqualTo, Type::LessThanOrEqualTo, Type::EqualTo}),
                            MCComparisonPredicateModifier::Any);
  builder.addNumberTemplate({"{Exif}.FNumber", "f-number"},
                            operators({Type::LessThanOrEqualTo, Type::GreaterThanOrEqualTo, Type::EqualTo}));
  const auto& templates = builder.rowTemplates();
  compound_ = templates.front()->copy();  // "All", the first of its types
  for (std::size_t i = 1; i < templates.size(); ++i) rows_.push_back({templates[i]->copy(), false});
}

MCPredicateRef BrowseFilter::predicate() {
  std::vector<MCPredicateRef> parts;
  for (Row& row : rows_)
    if (row.enabled) parts.push_back(row.row->predicateWithSubpredicates({}));
  if (parts.empty()) return nullptr;
  return compound_->predicateWithSubpredicates(parts);
}

bool BrowseFilter::passes(const MCPredicateNode& predicate, const std::filesystem::path& file) const {
  if (!properties_) return false;
  auto it = properties_->find(file.string());
  return it != properties_->end() && predicate.evaluateWithObject(it->second);
}

BrowseFilter::Properties BrowseFilter::readProperties(const std::vector<std::filesystem::path>& files,
                                                      std::stop_token stop, const MCCatalogue* catalogue,
                                                      const std::filesystem::path& folder) {
  // A folder's rows in one query: asking for each file alone costs a query, and a connection, each.
  Properties catalogued;
  if (catalogue && !folder.empty()) {
    try {
      for (auto& [path, properties] : catalogue->propertiesOfFilesUnder(folder)) catalogued.emplace(path.string(), std::move(properties));
    } catch (const std::exception&) {
      catalogued.clear();  // each file alone, then
    }
  }
  Properties out;
  for (const auto& file : files) {
    if (stop.stop_requested()) break;
    if (auto it = catalogued.find(file.string()); it != catalogued.end()) {
      out.emplace(file.string(), std::move(it->second));
      continue;
    }
    std::optional<MCDictionary> stored;
    try {
      if (catalogue && folder.empty()) stored = catalogue->propertiesOfFile(file);
    } catch (const std::exception&) {
      stored.reset();  // the file's own, then
    }
    out.emplace(file.string(), stored ? std::move(*stored) : searchablePropertiesOfFile(file));
  }
  return out;
}
