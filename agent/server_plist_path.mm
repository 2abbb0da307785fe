#import <Foundation/Foundation.h>

#include "agent/server_plist_path.h"

#include "app/ns_string.h"

namespace agent {

std::optional<std::string> serverPlistPath() {
  @autoreleasepool {
    NSArray *folders = [[NSFileManager defaultManager] URLsForDirectory:NSLibraryDirectory
                                                              inDomains:NSLocalDomainMask];
    if ([folders count] == 0) return std::nullopt;
    NSURL *library = [folders objectAtIndex:0];
    return app::utf8(
        [[library URLByAppendingPathComponent:@"Preferences/ZentavoAgent/server.plist"] path]);
  }
}

}  // namespace agent
