#include "themes/AppThemeCatalog.h"

#include <algorithm>
#include <array>
#include <vector>

namespace notlet::AppThemeCatalog {

namespace {

constexpr bool dark = true;
constexpr bool light = false;

struct Row {
  const char* id;
  const char* name;
  const char* category;
  bool isDark;
  /// Background, surface, primary, secondary, accent, alternate accent.
  std::string_view colours;
};

constexpr std::array rows = std::to_array<Row>({
    {"system", "Notlet System", "Notlet", dark, "000000 000000 FFFFFF FFFFFF FFFFFF FFFFFF"},
    {"ink", "Ink", "Monochrome", dark, "050505 171717 FAFAFA A3A3A3 FFFFFF 737373"},
    {"paper", "Paper", "Monochrome", light, "FAF9F6 EEEDE8 181817 686762 111111 8A8983"},
    {"graphite", "Graphite", "Monochrome", dark, "18181B 27272A FAFAFA A1A1AA D4D4D8 71717A"},
    {"slate", "Slate", "Monochrome", dark, "0F172A 1E293B F8FAFC 94A3B8 E2E8F0 64748B"},
    {"smoke", "Smoke", "Monochrome", light, "F5F5F4 E7E5E4 1C1917 78716C 44403C A8A29E"},
    {"carbon", "Carbon", "Monochrome", dark, "111111 222222 F4F4F4 9B9B9B E5E5E5 666666"},
    {"porcelain", "Porcelain", "Monochrome", light, "FFFFFF F3F4F6 111827 6B7280 374151 9CA3AF"},
    {"sepia", "Sepia", "Monochrome", light, "F4ECD8 E8DCC2 3F3528 756650 5C4B37 A28C6A"},
    {"midnight-mono", "Midnight Mono", "Monochrome", dark, "09090B 18181B F4F4F5 A1A1AA E4E4E7 52525B"},
    {"snow", "Snow", "Monochrome", light, "FFFFFF F7F7F7 0A0A0A 707070 242424 B0B0B0"},
    {"charcoal", "Charcoal", "Monochrome", dark, "202124 303134 F1F3F4 9AA0A6 DADCE0 5F6368"},
    {"silver", "Silver", "Monochrome", light, "ECEFF1 CFD8DC 263238 607D8B 455A64 90A4AE"},
    {"blueprint", "Blueprint", "Monochrome", dark, "07182E 102A4C EAF2FF 91A9C8 B8D4FF 527CAD"},
    {"dracula", "Dracula", "Popular", dark, "282A36 44475A F8F8F2 BFBFC7 BD93F9 FF79C6"},
    {"nord", "Nord", "Popular", dark, "2E3440 3B4252 ECEFF4 D8DEE9 88C0D0 A3BE8C"},
    {"solarized-dark", "Solarized Dark", "Popular", dark, "002B36 073642 EEE8D5 93A1A1 2AA198 B58900"},
    {"solarized-light", "Solarized Light", "Popular", light, "FDF6E3 EEE8D5 073642 657B83 268BD2 D33682"},
    {"gruvbox-dark", "Gruvbox Dark", "Popular", dark, "282828 3C3836 EBDBB2 A89984 FABD2F B8BB26"},
    {"gruvbox-light", "Gruvbox Light", "Popular", light, "FBF1C7 EBDBB2 3C3836 7C6F64 D65D0E 98971A"},
    {"catppuccin-mocha", "Catppuccin Mocha", "Popular", dark, "1E1E2E 313244 CDD6F4 A6ADC8 CBA6F7 89B4FA"},
    {"catppuccin-latte", "Catppuccin Latte", "Popular", light, "EFF1F5 E6E9EF 4C4F69 6C6F85 8839EF 1E66F5"},
    {"tokyo-night", "Tokyo Night", "Popular", dark, "1A1B26 24283B C0CAF5 9AA5CE 7AA2F7 BB9AF7"},
    {"one-dark", "One Dark", "Popular", dark, "282C34 353B45 ABB2BF 7F848E 61AFEF C678DD"},
    {"monokai", "Monokai", "Popular", dark, "272822 3E3D32 F8F8F2 A6A69C A6E22E F92672"},
    {"rose-pine", "Rosé Pine", "Popular", dark, "191724 26233A E0DEF4 908CAA C4A7E7 EBBCBA"},
    {"everforest", "Everforest", "Popular", dark, "2D353B 343F44 D3C6AA 9DA9A0 A7C080 83C092"},
    {"night-owl", "Night Owl", "Popular", dark, "011627 0B2942 D6DEEB 7FDBCA 82AAFF C792EA"},
    {"ayu-mirage", "Ayu Mirage", "Popular", dark, "1F2430 242936 CBCCC6 707A8C FFCC66 73D0FF"},
    {"github-light", "GitHub Light", "Popular", light, "FFFFFF F6F8FA 1F2328 656D76 0969DA 8250DF"},
    {"github-dark", "GitHub Dark", "Popular", dark, "0D1117 161B22 E6EDF3 8B949E 58A6FF BC8CFF"},
    {"synthwave", "Synthwave", "Vibrant", dark, "241B2F 34294F F7F1FF B8A7C9 FF7EDB 36F9F6"},
    {"cyberpunk", "Cyberpunk", "Vibrant", dark, "080B16 151A2E FCEE0A A6B1D0 00F0FF FF2A6D"},
    {"vaporwave", "Vaporwave", "Vibrant", dark, "241734 392552 FFF0FB D6A8D4 FF71CE 01CDFE"},
    {"ultraviolet", "Ultraviolet", "Vibrant", dark, "160B2D 28134D F5EFFF BCA8D8 B14AED 7B61FF"},
    {"electric-lime", "Electric Lime", "Vibrant", dark, "10140D 20291A F5FFE8 AFC49C B6FF3B 43E8D8"},
    {"hotline", "Hotline", "Vibrant", dark, "190B1F 32143A FFF3FB D0A2C7 FF4D8D FFB000"},
    {"arcade", "Arcade", "Vibrant", dark, "0B1020 151F38 F0F7FF 91A8C7 33FF99 FF3366"},
    {"cobalt", "Cobalt", "Vibrant", dark, "061B3A 0B2D5C FFFFFF A9C7EA FFC600 00BFFF"},
    {"ocean", "Ocean", "Nature", dark, "071E26 103742 E6FAFF 9BC1CA 2DD4BF 38BDF8"},
    {"forest", "Forest", "Nature", dark, "122019 20382A EFF8F0 A5B9A9 7FB069 DDA15E"},
    {"sage", "Sage", "Nature", light, "EEF2E6 DDE5D2 28342B 667268 6B8E6B A98467"},
    {"desert", "Desert", "Nature", light, "F7E7CE EBCFAF 493628 82654D C26D3A 5F7A61"},
    {"canyon", "Canyon", "Nature", dark, "251714 40251E F9E9D8 C5A38D E76F51 E9C46A"},
    {"moss", "Moss", "Nature", dark, "182016 2B3725 EEF2DF ADB79A 8DAA5D D4A373"},
    {"arctic", "Arctic", "Nature", light, "F1F8FA DCEEF2 16323F 577782 168AAD 76C893"},
    {"lagoon", "Lagoon", "Nature", light, "E9FAF7 CFF2EC 123B3A 4E7774 008C8C FF8C69"},
    {"sunset", "Sunset", "Warm", dark, "2B1520 47202B FFF0E8 CAA4A3 FF6B6B FFB347"},
    {"sunrise", "Sunrise", "Warm", light, "FFF7E8 FFE8C2 462D2A 8B655C F97316 EC4899"},
    {"terracotta", "Terracotta", "Warm", light, "F7E9DF EACDBD 432C26 806057 C65D3B D9A441"},
    {"coffee", "Coffee", "Warm", dark, "211813 38271F F5E9DB B8A393 C98B5F D6B26E"},
    {"honey", "Honey", "Warm", light, "FFF9E6 FCEBC2 3D321A 7F7046 D99A00 7D9D5B"},
    {"cherry", "Cherry", "Warm", dark, "250D17 401323 FFF1F5 D5A2B2 FB4B76 FF9F68"},
    {"peach", "Peach", "Warm", light, "FFF2E8 FFDDC7 472F29 88665B F27D5A D94F70"},
    {"lavender", "Lavender", "Soft", light, "F6F1FF E9DEFA 382B4A 76678B 8B5CF6 EC4899"},
    {"mint", "Mint", "Soft", light, "ECFFF8 D2F5E8 193D34 587C72 10B981 3B82F6"},
    {"blueberry", "Blueberry", "Soft", light, "EEF2FF DBE4FF 263154 647096 4F6BED 8B5CF6"},
    {"strawberry", "Strawberry", "Soft", light, "FFF0F3 FFD9E1 4A2530 8B626D E84A6F 9B5DE5"},
    {"seafoam", "Seafoam", "Soft", light, "EEFCF8 D6F2E9 24433C 66837C 2A9D8F 457B9D"},
    {"butter", "Butter", "Soft", light, "FFFBEA FFF1B8 413A24 817653 D4A900 7D9C4B"},
    {"lilac-night", "Lilac Night", "Soft", dark, "20182B 342540 F5ECFF BAA8C7 D8B4FE 93C5FD"},
    {"dusty-rose", "Dusty Rose", "Soft", light, "FAF1F3 EEDDE1 453338 806A70 B56576 6D597A"},
});

AppTheme makeTheme(const Row& row) {
  const auto colour = [&row](std::size_t index) { return std::string(row.colours.substr(index * 7, 6)); };
  return {row.id,    row.name,  row.category, row.isDark, colour(0), colour(1),
          colour(2), colour(3), colour(4),    colour(5),  false};
}

} // namespace

std::span<const AppTheme> themes() {
  static const std::vector<AppTheme> all = [] {
    std::vector<AppTheme> made;
    made.reserve(rows.size());
    std::ranges::transform(rows, std::back_inserter(made), makeTheme);
    return made;
  }();
  return all;
}

const AppTheme& themeWithID(std::string_view id) {
  const auto all = themes();
  const auto found = std::ranges::find(all, id, &AppTheme::id);
  return found == all.end() ? all.front() : *found;
}

bool contains(std::string_view id) {
  return std::ranges::find(themes(), id, &AppTheme::id) != themes().end();
}

} // namespace notlet::AppThemeCatalog
