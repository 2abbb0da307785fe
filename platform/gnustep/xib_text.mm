// gui 0.29 keeps only the last piece of an element's text in an interface file; the XML parser
// starts a new piece at newlines and characters outside ASCII.

#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSXibElement.h>
#import <GNUstepGUI/GSXibKeyedUnarchiver.h>

@implementation GSXibKeyedUnarchiver (XibText)

- (void)parser:(NSXMLParser *)parser foundCharacters:(NSString *)characters {
  (void)parser;
  NSString *before = [currentElement value];
  [currentElement
      setValue:before == nil ? characters : [before stringByAppendingString:characters]];
}

@end
