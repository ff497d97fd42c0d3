#include "apps/kivtools/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

#include "apps/kivtools/Language.h"

namespace kivtools {
namespace {

/// The number of single changes from one text to the other.
std::size_t Distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> twoBack;
  std::vector<std::size_t> before;
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    twoBack = std::exchange(before, row);
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = before[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, before[j] + 1, row[j - 1] + 1});
      if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
        row[j] = std::min(row[j], twoBack[j - 2] + 1);
      }
    }
  }
  return row[to.size()];
}

}  // namespace

std::string_view Nearest(std::string_view given, std::span<const std::string_view> names) {
  constexpr std::size_t kLongest = 40;  // no name is as long
  if (given.size() > kLongest) {
    return {};
  }
  std::size_t least = std::max<std::size_t>(given.size() / 3, 1) + 1;
  std::string_view nearest;
  for (const std::string_view name : names) {
    if (const std::size_t distance = Distance(given, name); distance < least) {
      least = distance;
      nearest = name;
    }
  }
  return nearest;
}

std::string DidYouMean(std::string_view given, std::span<const std::string_view> names, std::string_view prefix) {
  const std::string_view nearest = Nearest(given, names);
  return nearest.empty() ? std::string()
                         : Say({"; did you mean {0}{1}?", "; ați vrut {0}{1}?"}, prefix, nearest).Text();
}

}  // namespace kivtools
