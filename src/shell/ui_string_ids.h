#pragma once

// Ids of the texts the frame, the documents and their dialogs show. The
// effect keys and the messages of the effect frame have ids of their own in
// the same table; these are the remaining captions of the editor.
namespace lumiran::ids {

constexpr int WindowLimitText = 1901;
constexpr int WindowLimitTitle = 1903;
constexpr int ExitQuestion = 1923;
constexpr int ExitTitle = 1925;
constexpr int ErrorTitle = 1929;
constexpr int ScrollErrorText = 1935;
constexpr int ScrollErrorTitle = 1937;
constexpr int ProgressCaption = 3429;
constexpr int PleaseWait = 3431;
constexpr int CancelZ = 3433;
constexpr int ButtonOk = 2251;
constexpr int ButtonCancel = 2125;

// Top menus.
constexpr int MenuImage = 5001;
constexpr int MenuEdit = 5003;
constexpr int MenuView = 5005;
constexpr int MenuHelp = 5007;
constexpr int MenuTools = 5009;
constexpr int MenuEffect = 5011;
constexpr int MenuCompose = 5013;
constexpr int MenuRaster = 5015;
constexpr int MenuWindow = 5017;

// File menu.
constexpr int FileOpen = 5019;
constexpr int FileNew = 5021;
constexpr int FileCapture = 5023;
constexpr int FileViewer = 5025;
constexpr int FileExit = 5027;
constexpr int FileSave = 5029;
constexpr int FileClose = 5031;
constexpr int FileOpenNext = 5033;
constexpr int FileOpenPrev = 5035;
constexpr int FilePrint = 5037;
constexpr int FileInfo = 5039;

// Edit menu.
constexpr int EditFinalLoad = 5041;
constexpr int EditPasteClipboard = 5043;
constexpr int EditClipboardClear = 5045;
constexpr int EditHistoryClear = 5047;
constexpr int EditDesktop = 5049;
constexpr int EditUndo = 5051;
constexpr int EditUndoRelease = 5053;
constexpr int HistoryClearQuestion = 5055;
constexpr int HistoryClearTitle = 5057;
constexpr int Done = 5059;
constexpr int UndoFailed = 5061;
constexpr int UndoErrorTitle = 5063;

// View, window and help menus.
constexpr int ViewToolbar = 5065;
constexpr int ViewStatusBar = 5067;
constexpr int ViewFitWindow = 5069;
constexpr int ViewAutoPreview = 5071;
constexpr int ViewOptions = 5073;
constexpr int WindowCascade = 5075;
constexpr int WindowTileHorizontal = 5077;
constexpr int WindowTileVertical = 5079;
constexpr int WindowArrangeIcons = 5081;
constexpr int HelpContents = 5083;
constexpr int HelpAbout = 5085;
constexpr int HelpMissing = 5087;

// Status bar.
constexpr int StatusCalculation = 5089;
constexpr int StatusRaster = 5091;
constexpr int StatusTool = 5093;
constexpr int StatusBackColor = 5095;
constexpr int StatusDrawingColor = 5097;

// Saving.
constexpr int SaveBadPath = 5099;
constexpr int SaveTitle = 5101;
constexpr int SaveExists = 5103;
constexpr int SaveConfirmTitle = 5105;
constexpr int SaveDone = 5107;
constexpr int SaveFailed = 5109;
constexpr int SaveDepth24 = 5111;
constexpr int SaveDepth8 = 5113;
constexpr int SaveDepth1 = 5115;
constexpr int SaveFileName = 5117;
constexpr int SaveBrowse = 5119;
constexpr int SaveCommand = 5121;

// Settings and the first start.
constexpr int SettingsBrokenTitle = 5123;
constexpr int SettingsBroken = 5125;
constexpr int EasterEgg = 5127;
constexpr int OpenDialogTitle = 5129;
constexpr int NotAvailableYet = 5131;
constexpr int EffectBrowse = 5133;

// View zoom and the status panels beside the frame's own.
constexpr int ViewZoomIn = 5135;
constexpr int ViewZoomOut = 5137;
constexpr int ViewZoomActual = 5139;
constexpr int ViewZoomFit = 5141;
constexpr int StatusZoom = 5143;
constexpr int StatusSize = 5145;
constexpr int StatusPointer = 5147;
constexpr int StatusUndone = 5149;

// Reasons of a failed save, under the message's details.
constexpr int SaveTooManyColours = 5151;
constexpr int SaveEmptyPicture = 5153;
constexpr int SaveCannotWrite = 5155;
// The save dialog's fourth row.
constexpr int SavePng = 5801;

// The area tools: status texts and the tools menu.
constexpr int ToolSelecting = 5271;
constexpr int ToolAreaFixed = 5273;
constexpr int ToolMoving = 5275;
constexpr int ToolFill = 5277;
constexpr int ToolsSelect = 5279;
constexpr int ToolsFix = 5281;
constexpr int ToolsMove = 5283;
constexpr int ToolsEnd = 5285;
constexpr int ToolsFill = 5287;

// The clipboard.
constexpr int EditCopy = 5289;
constexpr int EditCut = 5291;
constexpr int EditPaste = 5293;
constexpr int ClipboardClearTitle = 5295;
constexpr int ClipboardDocumentName = 5297;
constexpr int ClipboardTooLarge = 5299;
constexpr int ClipboardEmptyPaste = 1945;
constexpr int ClipboardEmptyPasteTitle = 1947;
constexpr int ClipboardEmptyOpen = 1953;
constexpr int ClipboardEmptyOpenTitle = 1955;

// Picking a colour from a picture.
constexpr int PickColour = 5301;
constexpr int PickRunning = 5303;
constexpr int PickStopped = 5305;
// The composition menu's own rows.
constexpr int ComposeKeep = 5401;
constexpr int ComposeKept = 5403;
constexpr int ComposeKeepTitle = 5405;
constexpr int ComposeDiscard = 5407;
constexpr int ComposeDiscarded = 5409;
constexpr int ComposeDiscardTitle = 5411;
constexpr int ComposeExport = 5413;
constexpr int ComposeExportName = 5415;

// Wallpaper, capture, the image viewer, printing and the colour windows.
constexpr int WallNoPicture = 1973;
constexpr int WallTitle = 1975;
constexpr int WallCannotOpen = 1905;
constexpr int WallNotBitmap = 1977;
constexpr int ViewerSelectPicture = 2001;
constexpr int ViewerZoomErrorTitle = 2003;
constexpr int ViewerZoomError = 2005;
constexpr int ViewerFileDate = 2047;
constexpr int ViewerFileSize = 2049;
constexpr int ViewerPictureSize = 2051;
constexpr int WallDesktopUnsupported = 5601;
constexpr int WallMenu = 5603;
constexpr int CaptureRun = 5605;
constexpr int CaptureRefused = 5607;
constexpr int DesktopNoWallpaper = 5609;
constexpr int PrintTitle = 5611;
constexpr int ExplorerTitle = 5613;
constexpr int PixelTitle = 5615;
constexpr int CaptureDocumentName = 5617;
constexpr int SetAsDrawingColour = 5619;
constexpr int SetAsBackColour = 5621;
constexpr int PixelOutside = 5623;
constexpr int PrintPrinter = 5625;
constexpr int PrintPdfRow = 5627;
constexpr int PrintSizeLabel = 5629;
constexpr int PrintMarginLeft = 5631;
constexpr int PrintMarginTop = 5633;
constexpr int PrintMarginRight = 5635;
constexpr int PrintMarginBottom = 5637;

// The interface language (the options' "Interface" tab) and the browser's
// tree menu.
constexpr int InterfaceLanguageLabel = 5701;
constexpr int LanguageJapanese = 5703;
constexpr int LanguageEnglish = 5705;
constexpr int LanguageNextStart = 5707;
constexpr int LanguageFromEnvironment = 5709;
constexpr int BrowseTreeMenu = 5711;

} // namespace lumiran::ids
