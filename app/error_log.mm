#import <Foundation/Foundation.h>

#include "app/error_log.h"

#include "app/diagnostics.h"
#include "app/ns_string.h"

namespace app {

std::string errorLogTime(std::chrono::system_clock::time_point moment) {
  @autoreleasepool {
    const std::chrono::duration<double> sinceEpoch = moment.time_since_epoch();
    NSDateFormatter *formatter = [[[NSDateFormatter alloc] init] autorelease];
    [formatter setDateFormat:@"yyyy-MM-dd HH:mm:ss.SSS"];
    return utf8(
        [formatter stringFromDate:[NSDate dateWithTimeIntervalSince1970:sinceEpoch.count()]]);
  }
}

void printErrorLog(const std::string &message) {
  // Two writes: the newline must follow even a message that ends early at a NUL character.
  const StderrOutputStream stream;
  stream.write(errorLogTime(std::chrono::system_clock::now()) + " " + message);
  stream.write("\n");
}

}  // namespace app
