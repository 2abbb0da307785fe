#import <Foundation/Foundation.h>

#include "app/error_log.h"

#include "app/console.h"
#include "app/text.h"

namespace app {

void printErrorLog(const std::string &message) {
  @autoreleasepool {
    NSDateFormatter *formatter = [[[NSDateFormatter alloc] init] autorelease];
    [formatter setDateFormat:@"yyyy-MM-dd HH:mm:ss.SSS"];
    const std::string time = utf8([formatter stringFromDate:[NSDate date]]);

    // Two writes, so that the line end follows even a message that is cut at a NUL character.
    const StderrOutputStream stream;
    stream.write(time + " " + message);
    stream.write("\n");
  }
}

}  // namespace app
