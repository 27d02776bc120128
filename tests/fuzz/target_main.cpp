// Hands inputs to a fuzz target: the fuzzer's, or, where no fuzzer is linked in, those of a folder, each alone and
// behind the few before it: what differs may show only where two meet. Usage: fuzz_TARGET FOLDER
#include <deque>
#include <filesystem>
#include <set>

#include "tests/fuzz/fuzz_input.h"
#include "tests/support/temp_folder.h"

using namespace quorvel::test;

#ifdef QUORVEL_FUZZ
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  runTarget(FuzzInput({reinterpret_cast<const char*>(data), size}));
  return 0;
}
#else
int main(int argc, char** argv) {
  if (argc != 2) return 2;
  constexpr std::size_t kMostBefore = 4;
  const std::set<std::filesystem::path> files(std::filesystem::directory_iterator(argv[1]), {});
  std::deque<std::string> before;
  for (const auto& path : files) {
    std::cout << path.filename().string() << std::endl;
    const std::string input = readFile(path);
    runTarget(FuzzInput(input));
    for (const std::string& front : before)
      runTarget(FuzzInput(front + input));
    before.push_back(input);
    if (before.size() > kMostBefore) before.pop_front();
  }
  return files.empty() ? 1 : 0;  // an empty folder would test nothing
}
#endif
