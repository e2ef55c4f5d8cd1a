#pragma once

namespace vantrel {

/// Spares GNUstep the search for the images of check boxes, radio buttons and menus, and a hidden window for each.
///
/// GNUstep leads their names to others, under which there is no file: it looks for each in every library as every type
/// of image, which takes 5 to 12 ms and 2 MB a name, before it finds the file under its first name. This binds each
/// file to the name that GNUstep ends with. An image that has the name already keeps it. Where the theme brings images
/// of its own, nothing is bound and GNUstep asks the theme; one that is chosen later replaces these images like all
/// others.
void registerStandardImages();

}  // namespace vantrel
