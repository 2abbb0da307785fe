// -[NSDictionary initWithContentsOfFile:] of base 1.28 does not read binary property lists nor XML
// without its declaration, and overruns the stack on deep nesting; the parser beneath raises for
// some malformed files and takes all memory for others. Files beyond 1 MiB count as malformed here.

#import <Foundation/Foundation.h>

#include "property_list_guard.h"

namespace {

/// The XML parser takes "\U0041" for an A, where macOS takes it literally.
std::string withBackslashesKept(std::string_view xml) {
  std::string kept;
  for (std::size_t i = 0; i < xml.size(); ++i) {
    kept += xml[i];
    if (xml.substr(i, 2) == "\\U") kept += "U005c";
  }
  return kept;
}

/// The property list in `bytes`; nil when there is none. May raise.
id propertyList(std::string bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);  // byte order mark
  const std::optional<platform::PropertyListForm> form = platform::harmlessForm(bytes);
  if (!form.has_value()) return nil;
  if (*form != platform::PropertyListForm::Binary) {
    // The XML parser would write a line to standard error for each string that is not UTF-8.
    NSString *text = [[[NSString alloc] initWithBytes:bytes.data()
                                               length:bytes.size()
                                             encoding:NSUTF8StringEncoding] autorelease];
    if (text == nil || *form == platform::PropertyListForm::Text) return [text propertyList];
    bytes.erase(0, bytes.find('<'));
    bytes = withBackslashesKept(bytes);
    if (!bytes.starts_with("<?xml")) bytes.insert(0, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
  }
  return [NSPropertyListSerialization propertyListWithData:[NSData dataWithBytes:bytes.data()
                                                                          length:bytes.size()]
                                                   options:NSPropertyListImmutable
                                                    format:nil
                                                     error:nil];
}

}  // namespace

@implementation NSDictionary (PropertyListFiles)

- (id)initWithContentsOfFile:(NSString *)path {
  id contents = nil;
  if ([path length] > 0) {
    std::optional<std::string> bytes =
        platform::readPropertyListFile([path fileSystemRepresentation]);
    @try {
      if (bytes.has_value()) contents = propertyList(std::move(*bytes));
    } @catch (NSException *) {
      contents = nil;  // malformed
    }
  }
  if (![contents isKindOfClass:[NSDictionary class]]) {
    [self release];
    return nil;
  }
  return [self initWithDictionary:contents];
}

@end
