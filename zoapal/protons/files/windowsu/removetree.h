#ifndef ZOAPAL_PROTONS_FILES_WINDOWSU_REMOVETREE_H
#define ZOAPAL_PROTONS_FILES_WINDOWSU_REMOVETREE_H

#include <string>

namespace nQUENRA1400::nZOAPAL000 {

// Removes a folder with its contents, read-only entries included, as far as the system allows. Never follows
// a link: a junction or symbolic link is removed itself, and the path may be one. Only the links in the path
// of the parent folder are followed. An entry that cannot be removed stays, and so do the folders above it.
void removeTree(const std::u16string& path) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
