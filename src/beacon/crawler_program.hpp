// SPDX-License-Identifier: MIT
// The crawler as a process of its own: it runs when nobody else wants the processor or the disk, and what
// it reads can end it alone.
#pragma once

namespace vellum {

// What the service started it with: a socket, and the memory that both see.
constexpr int kCrawlerControl = 3;
constexpr int kCrawlerMemory = 4;

// What the service tells the crawler, a packet of one letter each, and what it is told. When the socket
// ends, so does the crawler.
constexpr char kReadEverything = 'R'; // read every file again
constexpr char kLookAgain = 'L'; // look whether the index is in place and sound, and through everything
constexpr char kStateHasChanged = 'S';

// The life of the crawler; its exit code.
int RunCrawler() noexcept;

} // namespace vellum
