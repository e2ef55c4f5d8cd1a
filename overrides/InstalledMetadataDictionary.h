#pragma once

#import <Foundation/Foundation.h>

namespace vantrel {

/// The class MetadataDictionary that the process has already, whoever made it, or else that of the installed library
/// KVRXMetadataDictionary. Nil when there is neither.
Class installedMetadataDictionary();

}  // namespace vantrel
