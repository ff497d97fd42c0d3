// A program that saves a dataset, or edits it with a journal, for dataset_calls.py to stop it at each system call.
//
//     saver save FILE ROWS [backup]     saves a dataset of so many rows
//     saver journal FILE EDITS          loads the file, keeps a journal of it, makes so many edits, saves, edits again
//     saver show FILE                   prints rows and sum
#include <cstdlib>
#include <iostream>
#include <string_view>

#include "kivtools/dataset/Journal.h"

namespace {

using namespace kiv;

Dataset MakeDataset(int rows) {
  Dataset dataset("linii", {{"id", FieldType::AutoInc, kKey}, {"suma", FieldType::Int64}});
  for (int i = 0; i < rows; ++i) {
    dataset.Insert({{"suma", 1}});
  }
  return dataset;
}

void Show(const Dataset& dataset) {
  std::int64_t sum = 0;
  for (const RowId row : dataset.Rows()) {
    sum += dataset.GetInt64(row, "suma");
  }
  std::cout << dataset.RowCount() << " " << sum << "\n";
}

void Edit(Dataset& dataset, int edits) {
  for (int i = 0; i < edits; ++i) {
    dataset.Insert({{"suma", 10}});
    // What a caller has been told is done stays done.
    std::cerr << "done " << dataset.RowCount() << "\n";
  }
}

void KeepJournal(const char* path, int edits) {
  Dataset dataset = LoadBinary(path);
  Journal journal(dataset, path);
  Edit(dataset, edits);
  journal.Save();
  Edit(dataset, edits);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    return 2;
  }
  try {
    const std::string_view what = arguments[1];
    if (what == "save" && count > 3) {
      SaveBinary(MakeDataset(std::atoi(arguments[3])), arguments[2], {.backup = count > 4});
    } else if (what == "journal" && count > 3) {
      KeepJournal(arguments[2], std::atoi(arguments[3]));
    } else {
      Show(LoadBinary(arguments[2]));
    }
  } catch (const std::exception& error) {
    std::cerr << error.what() << "\n";
    return 1;
  }
  return 0;
}
