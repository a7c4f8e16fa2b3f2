#pragma once

#include <array>
#include <string_view>

/// The words that desktops put before the names of screenshots, in the languages that they speak.
/// In lower case and precomposed (NFC).
inline constexpr std::array<std::u32string_view, 43> kScreenshotPrefixes = {
    U"screen shot", // English (older systems)
    U"screenshot", // English
    U"schermafbeelding", // Dutch
    U"bildschirmfoto", // German
    U"capture d'écran", // French
    U"captura de pantalla", // Spanish
    U"captura de tela", // Portuguese (Brazil)
    U"captura de ecrã", // Portuguese (Portugal)
    U"schermata", // Italian
    U"instantané", // French (alternative)
    U"skärmbild", // Swedish
    U"skærmbillede", // Danish
    U"skjermbilde", // Norwegian
    U"näyttökuva", // Finnish
    U"skjámynd", // Icelandic
    U"снимок экрана", // Russian
    U"знімок екрана", // Ukrainian
    U"zrzut ekranu", // Polish
    U"snímek obrazovky", // Czech
    U"snímka obrazovky", // Slovak
    U"képernyőkép", // Hungarian
    U"captură de ecran", // Romanian
    U"екранна снимка", // Bulgarian
    U"posnetek zaslona", // Slovenian
    U"snimka zaslona", // Croatian
    U"螢幕截圖", // Chinese (traditional)
    U"截屏", // Chinese (simplified)
    U"截图", // Chinese (simplified, alternative)
    U"スクリーンショット", // Japanese
    U"스크린샷", // Korean
    U"화면 캡처", // Korean (alternative)
    U"ảnh chụp màn hình", // Vietnamese
    U"tangkapan layar", // Indonesian
    U"ภาพหน้าจอ", // Thai
    U"สกรีนช็อต", // Thai (alternative)
    U"צילום מסך", // Hebrew
    U"لقطة شاشة", // Arabic
    U"تصویر صفحه", // Persian
    U"ekran görüntüsü", // Turkish
    U"στιγμιότυπο οθόνης", // Greek
    U"kuvakaappaus", // Finnish (alternative)
    U"ekraanipilt", // Estonian
    U"ekrānuzņēmums", // Latvian
};
