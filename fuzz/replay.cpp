// Drives a fuzz target without clang's fuzzer: with each seed, then with copies of
// seeds in which a few bytes are changed. The changes are the same in each run.
//
// usage: TARGET RUNS SEED-FILE...
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;
using Random = std::minstd_rand;

void ChangeOnce(Bytes& bytes, Random& random) {
  const std::size_t at = bytes.empty() ? 0 : random() % bytes.size();
  const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(at);
  switch (random() % 4) {
    case 0:
      if (!bytes.empty()) *place ^= static_cast<std::uint8_t>(1u << random() % 8);
      break;
    case 1:
      if (!bytes.empty()) *place = static_cast<std::uint8_t>(random());
      break;
    case 2:
      bytes.insert(place, static_cast<std::uint8_t>(random()));
      break;
    default:
      bytes.erase(place, place + static_cast<std::ptrdiff_t>(random() % (bytes.size() - at + 1)));
      break;
  }
}

// The beginning of one seed and the end of another, with a few changes.
Bytes Changed(const std::vector<Bytes>& seeds, Random& random) {
  const Bytes& first = seeds[random() % seeds.size()];
  const Bytes& second = seeds[random() % seeds.size()];
  Bytes bytes(first.begin(),
              first.begin() + static_cast<std::ptrdiff_t>(random() % (first.size() + 1)));
  if (second.size() > bytes.size()) {
    bytes.insert(bytes.end(), second.begin() + static_cast<std::ptrdiff_t>(bytes.size()),
                 second.end());
  }
  for (auto count = random() % 8; count != 0; --count) ChangeOnce(bytes, random);
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<Bytes> seeds;
  for (int i = 2; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
  if (seeds.empty()) {
    std::fprintf(stderr, "usage: %s RUNS SEED-FILE...\n", argv[0]);
    return 2;
  }
  for (const Bytes& seed : seeds) LLVMFuzzerTestOneInput(seed.data(), seed.size());
  Random random(1);
  const int runs = std::atoi(argv[1]);
  for (int i = 0; i < runs; ++i) {
    const Bytes bytes = Changed(seeds, random);
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  std::printf("%zu seeds and %d changed inputs\n", seeds.size(), runs);
  return 0;
}
