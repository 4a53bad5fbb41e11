#pragma once

// Ids of the captions of the further dialogs: options, new image, colours,
// picture information, start and version forms.
namespace lumiran::dialog_ids {

// frm_Option.
constexpr int OptionTitle = 5201;
constexpr int MaxUndoCount = 5203;
constexpr int Arrangement = 5205;
constexpr int ArrangeNone = 5207;
constexpr int ArrangeCascade = 5209;
constexpr int ArrangeTileHorizontal = 5211;
constexpr int ArrangeTileVertical = 5213;
constexpr int ProgressBar = 5215;
constexpr int ProgressBarStandard = 5217;
constexpr int ProgressBarSmooth = 5219;
constexpr int LoadingLimit = 5221;
constexpr int NoLimit = 5223;
constexpr int FontSize = 5225;
constexpr int AutoPreview = 5227;
constexpr int ChangeColor = 5229;
constexpr int RasterPlainCopy = 5231;
constexpr int MaxLoadSide = 5307;

// frm_Create.
constexpr int CreateTitle = 5233;
constexpr int Width = 5235;
constexpr int Height = 5237;
constexpr int ImageName = 5239;
constexpr int DefaultImageName = 5241;

// frm_ColorSet.
constexpr int ColorSetTitle = 5243;

// frm_PictureInfo.
constexpr int PictureInfoTitle = 5245;
constexpr int Path = 5247;
constexpr int Folder = 5249;
constexpr int PixelCount = 5251;
constexpr int FileSize = 5253;
constexpr int ColorCount = 5255;
constexpr int NoFile = 5257;
constexpr int Unknown = 5259;
constexpr int Bytes = 5261; // "%1" is the number

// Frm_Splash and frm_Vasion.
constexpr int Version = 5263; // "%1" is the version number
constexpr int VersionTitle = 5265;
constexpr int FirstStartOfVersion = 5267;
constexpr int Starting = 5269;

} // namespace lumiran::dialog_ids
