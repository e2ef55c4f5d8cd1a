#pragma once

#import <Foundation/Foundation.h>

namespace vantrel::apple {

/// The class MetadataDictionary of the codec's installed library
/// "/Library/Application Support/Vantrel/Libs/KVRXMetadataDictionary.dylib"; Nil when the library isn't there, can't be
/// loaded, or has no such class. No other place is searched.
Class makersMetadataDictionary();

}  // namespace vantrel::apple
