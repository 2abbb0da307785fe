// What @available calls in the compiler's runtime where the answer is not known when compiling. The
// cross-build links without Zig's runtime, so the function is here. Linked only where a guard asks
// for something newer than the minimum system.

#include <cstdint>

struct Version {
  std::uint32_t platform;
  std::uint32_t version;
};

extern "C" bool _availability_version_check(std::uint32_t count, const Version *versions)
    __attribute__((weak_import));

extern "C" std::int32_t __isPlatformVersionAtLeast(std::uint32_t platform, std::uint32_t major,
                                                   std::uint32_t minor, std::uint32_t patch) {
  const Version wanted{platform, major << 16 | minor << 8 | patch};
  return _availability_version_check != nullptr && _availability_version_check(1, &wanted);
}
