#pragma once

#include <filesystem>
#include <string>
#include <vector>

// The catalogue: which accessories have an update, where its package is, and how it is installed. A JSON file [UTF-8]:
//
//     {
//       "accessories": [
//         {
//           "deviceKey": "pen-01",                     names the device; unique, not empty
//           "modelId": "IDS_NAME_PEN",                 resource id of the display name
//           "image": "drawable/Brindle/pen.png",       picture of the device, relative to the page's skin
//           "version": "2.4.1",                        version that the package brings
//           "description": ["One line", "Another"],    lines of device information; may be left out
//           "driver": true,                            driver or firmware (true) or companion app (false)
//           "package": "packages/pen-01.bin",          package file
//           "sha256": "<64 hexadecimal digits>",       of the package file
//           "installer": ["installers/install.sh", "--quiet"]
//         }
//       ]
//     }
//
// Every field but "description" is required, none may be there twice, and no other field is known. Relative paths start
// at the catalogue's folder, in which the installer runs too. "installer" is a program with its arguments, or one text
// for the system's shell; docs/service.md says what it is given.
namespace update_service {

struct Accessory {
    std::string deviceKey;  // all texts are UTF-8
    std::string modelId;
    std::string image;
    std::string version;
    std::vector<std::string> description;
    bool isDriver = false;
    std::filesystem::path package;       // joined with the catalogue's folder
    std::string sha256;                  // lower-case hexadecimal
    std::vector<std::string> installer;  // program and arguments; those of the shell for a text
};

struct Catalogue {
    std::filesystem::path folder;  // absolute
    std::vector<Accessory> accessories;
};

// Throws std::runtime_error that names the file, the line or the entry and field, and the reason. Whether packages are
// there is looked at when they are fetched.
Catalogue ReadCatalogue(const std::filesystem::path& file);

// Null when the catalogue has no such accessory.
const Accessory* Find(const Catalogue& catalogue, const std::string& deviceKey);

}  // namespace update_service
