<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP">
<context>
    <name></name>
    <message id="globals.kEditM">
        <source>Edit</source>
        <translation>編集</translation>
    </message>
    <message id="globals.kHelpM">
        <source>Help</source>
        <translation>ヘルプ</translation>
    </message>
    <message id="globals.kAboutM">
        <source>About Twinly</source>
        <translation>Twinly について</translation>
    </message>
    <message id="globals.kManualM">
        <source>Operation explanation</source>
        <translation>操作説明</translation>
    </message>
    <message id="globals.kLicenseM">
        <source>Copyright</source>
        <translation>著作権</translation>
    </message>
    <message id="globals.kSummaryT">
        <source>Text Compare Utility</source>
        <translation>テキスト比較ユーティリティ</translation>
    </message>
    <message id="globals.kURLHTag">
        <source>Jump to the support page</source>
        <translation>サポートページを開きます</translation>
    </message>
    <message id="globals.kMailHTag">
        <source>Make new mail to the author</source>
        <translation>作者宛ての新しいメールを作成します</translation>
    </message>
    <message id="globals.kDropHTag">
        <source>You can drop any file in this area or everywhere in the window. <byte value="xd"/>(It&apos;s Ok to drop two files at a time.)</source>
        <translation>この枠内、またはウインドウのどこにでもファイルをドロップできます。<byte value="xd"/>（二つのファイルを同時にドロップしてもかまいません。）</translation>
    </message>
    <message id="globals.kMainTitleT">
        <source>Text Differences</source>
        <translation>テキストの相違</translation>
    </message>
    <message id="globals.kTWLLicenseT">
        <source>Twinly&apos;s comparison engine is its own code and needs nothing but the C++ standard library.
Its windows are built with Qt, and ICU converts its Japanese encodings, all but two that use tables of its own.
The licences of these libraries ask that a program built with them make this known.
That is why these notices are shown; the full licence texts are published on the projects&apos; web pages.</source>
        <translation>Twinly の比較エンジンは独自のコードで、C++ 標準ライブラリのほかには何も必要としません。
ウインドウは Qt で作られ、日本語の文字コードは ICU で変換しています（独自の変換表を使う二つを除きます）。
これらのライブラリのライセンスは、それを使って作られたプログラムがその旨を明示するよう求めています。
そのためにここに表示しています。ライセンスの全文は各プロジェクトのウェブページで公開されています。</translation>
    </message>
    <message id="globals.kManualT">
        <source>Twinly compares two texts line by line.
(Any file can be read as text.)

◆ The left and right panes hold the two texts. The indicator between them joins each stretch of lines that differs by a yellow band (#FFCC00), from its place on the left to its place on the right; its blue ground (#99CCFF) stands for the lines that are the same. The current difference is drawn in orange, and its lines are marked in both panes; within changed lines, the characters that differ are marked more strongly. The small boxes at the lower left and lower right show the two colours.

◆ &quot;Next&quot; and &quot;Prev&quot; step to the next and the previous difference and show it a few lines below the top of the panes; &quot;Top&quot; and &quot;Btm&quot; go to the beginning and the end. The number between the panes counts the differences, and &quot;All same!&quot; shows when there are none. Click a band to make that difference the current one. Turn the mouse wheel over the indicator to scroll both panes together.
The View menu does the same from the keyboard: Alt+Home to the top, Alt+Up to the previous difference, Alt+Down to the next, Alt+End to the bottom.

◆ Drop one or two files on the window or on a pane.
On the window or on the left pane, the first file goes to the left and the second to the right.
On the right pane, the first file goes to the right and the second to the left.
A dropped file replaces the text of its pane; dropped text is added to it.
The File menu opens a file into a pane as a drop does: Open Left… (Ctrl+O), Open Right… (Ctrl+Shift+O). Reload (Ctrl+R or F5) reads both panes&apos; files again.

◆ Files can also be given on the command line, &quot;twinly LEFT RIGHT&quot;, or opened with Twinly from the file manager.
While Twinly runs, opening more files hands them to its window instead of starting a second one.

◆ Each pane has its own &quot;Text encoding&quot; popup: UTF-8, ShiftJIS, Japanese MacOS, Japanese EUC and ShiftJIS-X0212.
Choosing one shows the pane&apos;s last file again in that encoding, in place of any edits; Undo (Ctrl+Z) brings them back, as it does after Reload and &quot;Clear All&quot;.
When the chosen encoding can&apos;t read some bytes and another one reads them all, the bar at the bottom of the window offers it.

◆ Rich text (.rtf files and .rtfd folders) is shown with its styles.
HTML and other files are shown as plain text; PNG and JPEG pictures, PDF, movies and ZIP archives are not read.

◆ The title above a pane names its file; click it to see the folders that hold the file. &quot;Clear All&quot; empties both panes.

◆ A bar at the bottom of the window tells of a file that could not be read, and why, and of a shown file that has changed on disk, with a button to reload it. Ctrl+Q quits.


(Note)
1. If a file takes long to read, press Esc to interrupt the reading; the pane keeps what was read so far.

2. The panes can be edited, but Twinly never writes a file. It is a comparison tool, not an editor: edits are gone when it closes.

3. Lines are compared exactly. The line endings CR, LF and CR LF count as the same; blanks at the end of a line count as a difference.
</source>
        <translation>行単位でテキストを比較するユーティリティです。
（どんなファイルもテキストとして読み込めます。）

◆ 左右のペインに二つのテキストを表示します。間にあるインジケータは、内容の異なる行の範囲を、左の位置から右の位置まで黄色の帯（#FFCC00）で結びます。青の地（#99CCFF）は同じ行を表します。現在の相違はオレンジ色で描かれ、その行が左右のペインで色付けされます。変更された行の中の異なる文字は、さらに濃く色付けされます。左下と右下の小さな枠が二つの色の見本です。

◆ 「次へ」「前へ」で次・前の相違に移動し、ペインの上端から数行下に表示します。「先頭」「末尾」で先頭・末尾に移動します。ペインの間の数字は相違の数で、相違がないときは「相違なし」と表示されます。帯をクリックすると、その相違が現在の相違になります。インジケータの上でマウスホイールを回すと、左右のペインが一緒にスクロールします。
「表示」メニューでもキーボードから同じ操作ができます：Alt+Home で先頭、Alt+↑ で前の相違、Alt+↓ で次の相違、Alt+End で末尾へ移動します。

◆ ウインドウやペインには、ファイルを一つか二つドロップできます。
ウインドウまたは左ペインにドロップすると、一つ目のファイルが左に、二つ目が右に表示されます。
右ペインにドロップすると、一つ目が右に、二つ目が左に表示されます。
ファイルをドロップするとペインの内容が置き換わり、テキストをドロップすると元のテキストに追加されます。
「ファイル」メニューでも、ドロップと同じようにペインにファイルを開けます：左に開く…（Ctrl+O）、右に開く…（Ctrl+Shift+O）。再読み込み（Ctrl+R または F5）で両方のペインのファイルを読み込み直します。

◆ コマンドラインで「twinly 左のファイル 右のファイル」と指定したり、ファイルマネージャーから Twinly で開いたりすることもできます。
Twinly の実行中にさらにファイルを開くと、二つ目の Twinly は起動せず、開いているウインドウにファイルが渡されます。

◆ ペインごとに「Text encoding」のポップアップがあり、UTF-8、日本語 ShiftJIS、日本語 MacOS、日本語 EUC、日本語 ShiftJIS-X0212 から選べます。
文字コードを選ぶと、そのペインで最後に読み込んだファイルをその文字コードで表示し直します（編集内容は置き換わりますが、再読み込みや「全消去」のあとと同じく、取り消し（Ctrl+Z）で戻せます）。
選んだ文字コードで読めないバイトがあり、別の文字コードならすべて読めるときは、ウインドウ下端のバーがその文字コードを勧めます。

◆ リッチテキスト（.rtf ファイル、.rtfd フォルダ）はスタイル付きで表示します。
HTML などその他のファイルはテキストとして表示します。PNG・JPEG 画像、PDF、動画、ZIP アーカイブは読み込みません。

◆ ペインの上のタイトルにはファイル名が表示され、クリックするとそのファイルのあるフォルダを確認できます。「全消去」で両方のペインを空にします。

◆ ウインドウ下端のバーは、読み込めなかったファイルとその理由や、表示中のファイルがディスク上で変更されたことを知らせ、再読み込みのボタンを表示します。Ctrl+Q で終了します。


（注意）
1. ファイルの読み込みに時間がかかるときは、Esc キーで中断できます。それまでに読み込んだ部分がペインに残ります。

2. ペインは編集できますが、Twinly はファイルを書き出しません。エディタではなく比較ツールですので、ご了承ください。編集内容は終了時に失われます。

3. 行は厳密に比較します。改行コード CR、LF、CR LF は同じものとみなしますが、行末の空白は相違になります。
</translation>
    </message>
    <message id="globals.kMoveNextHTag">
        <source>To the next difference</source>
        <translation>次の相違へ</translation>
    </message>
    <message id="globals.kMovePrevHTag">
        <source>To the previous difference</source>
        <translation>前の相違へ</translation>
    </message>
    <message id="globals.kMoveTopHTag">
        <source>To the top</source>
        <translation>先頭へ</translation>
    </message>
    <message id="globals.kMoveBtmHTag">
        <source>To the bottom</source>
        <translation>末尾へ</translation>
    </message>
    <message id="globals.kAppName">
        <source>Twinly</source>
        <translation>Twinly</translation>
    </message>
    <message id="globals.kEditClear">
        <source>Delete</source>
        <translation>削除</translation>
    </message>
    <message id="globals.kFileQuit">
        <source>Quit</source>
        <translation>終了</translation>
    </message>
    <message id="globals.kHitAnyKeyT">
        <source>&quot;Click Anywhere&quot; or &quot;Hit Any Key&quot; to close this window.</source>
        <translation>クリックするか、いずれかのキーを押すと閉じます。</translation>
    </message>
    <message id="globals.kSameT">
        <source>Same</source>
        <translation>同じ</translation>
    </message>
    <message id="globals.kDifferentT">
        <source>Different</source>
        <translation>相違</translation>
    </message>
    <message id="globals.kEditCut">
        <source>Cut</source>
        <translation>切り取り</translation>
    </message>
    <message id="globals.kEditCopy">
        <source>Copy</source>
        <translation>コピー</translation>
    </message>
    <message id="globals.kEditPaste">
        <source>Paste</source>
        <translation>貼り付け</translation>
    </message>
    <message id="globals.kEditUndo">
        <source>Undo</source>
        <translation>元に戻す</translation>
    </message>
    <message id="globals.kEditRedo">
        <source>Redo</source>
        <translation>やり直す</translation>
    </message>
    <message id="globals.kEditSelectAll">
        <source>Select All</source>
        <translation>すべて選択</translation>
    </message>
    <message id="globals.kMoveNext">
        <source>Next</source>
        <translation>次へ</translation>
    </message>
    <message id="globals.kMoveBtm">
        <source>Btm</source>
        <translation>末尾</translation>
    </message>
    <message id="globals.kMovePrev">
        <source>Prev</source>
        <translation>前へ</translation>
    </message>
    <message id="globals.kMoveTop">
        <source>Top</source>
        <translation>先頭</translation>
    </message>
    <message id="globals.kAllTheSameT">
        <source>All same!</source>
        <translation>相違なし</translation>
    </message>
    <message id="globals.kLicenseTitle1">
        <source>Twinly 1.1.4 (2026), free software under the GNU LGPL 2.1:</source>
        <translation>Twinly 1.1.4（2026年）、GNU LGPL 2.1 のフリーソフトウェア：</translation>
    </message>
    <message id="globals.kLicenseTitle2">
        <source>Qt 6 toolkit, under the GNU LGPL 3:</source>
        <translation>Qt 6 ツールキット（GNU LGPL 3）：</translation>
    </message>
    <message id="globals.kLicenseTitle3">
        <source>ICU (Unicode License):</source>
        <translation>ICU（Unicode ライセンス）：</translation>
    </message>
    <message id="globals.kClearAll">
        <source>Clear All</source>
        <translation>全消去</translation>
    </message>
    <message id="globals.kBoxLeft">
        <source>Left Box</source>
        <translation>左ペイン</translation>
    </message>
    <message id="globals.kBoxRight">
        <source>Right Box</source>
        <translation>右ペイン</translation>
    </message>
    <message id="globals.kLanguage">
        <source>Default</source>
        <translation>Japanese</translation>
    </message>
    <message id="globals.kNoticeNotRead">
        <source>%1 was not read: %2.</source>
        <translation>%1 を読み込みませんでした：%2。</translation>
    </message>
    <message id="globals.kNoticeMissing">
        <source>it does not exist</source>
        <translation>ファイルがありません</translation>
    </message>
    <message id="globals.kNoticeNotAFile">
        <source>it is not a regular file</source>
        <translation>通常のファイルではありません</translation>
    </message>
    <message id="globals.kNoticeRefusedKind">
        <source>files of this kind are never read</source>
        <translation>この種類のファイルは読み込みません</translation>
    </message>
    <message id="globals.kNoticeUnreadable">
        <source>it could not be opened or read</source>
        <translation>開くことも読むこともできませんでした</translation>
    </message>
    <message id="globals.kNoticeOutsidePackage">
        <source>its text lies outside the package</source>
        <translation>本文がパッケージの外にあります</translation>
    </message>
    <message id="globals.kNoticeShrank">
        <source>%1 became shorter while it was read: only the part that was there is shown.</source>
        <translation>%1 は読み込み中に短くなりました。読み込めた部分だけを表示しています。</translation>
    </message>
    <message id="globals.kNoticeLinkRefused">
        <source>%1: a picture linked from outside the package was left out.</source>
        <translation>%1：パッケージの外を指す画像のリンクは読み込みませんでした。</translation>
    </message>
    <message id="globals.kNoticePictures">
        <source>%1: pictures beyond the memory budget show as grey boxes.</source>
        <translation>%1：メモリの上限を超えた画像は灰色の枠で表示しています。</translation>
    </message>
    <message id="globals.kNoticeClose">
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message id="globals.kFileM">
        <source>File</source>
        <translation>ファイル</translation>
    </message>
    <message id="globals.kFileOpenLeft">
        <source>Open Left…</source>
        <translation>左に開く…</translation>
    </message>
    <message id="globals.kFileOpenRight">
        <source>Open Right…</source>
        <translation>右に開く…</translation>
    </message>
    <message id="globals.kFileReload">
        <source>Reload</source>
        <translation>再読み込み</translation>
    </message>
    <message id="globals.kViewM">
        <source>View</source>
        <translation>表示</translation>
    </message>
    <message id="globals.kViewTop">
        <source>Top</source>
        <translation>先頭の相違へ</translation>
    </message>
    <message id="globals.kViewPrev">
        <source>Previous</source>
        <translation>前の相違へ</translation>
    </message>
    <message id="globals.kViewNext">
        <source>Next</source>
        <translation>次の相違へ</translation>
    </message>
    <message id="globals.kViewBottom">
        <source>Bottom</source>
        <translation>末尾へ</translation>
    </message>
    <message id="globals.kNoticePermission">
        <source>permission to read it is denied</source>
        <translation>読み取りの権限がありません</translation>
    </message>
    <message id="globals.kNoticeFolder">
        <source>it is a folder</source>
        <translation>フォルダです</translation>
    </message>
    <message id="globals.kNoticeSpecial">
        <source>it is a device, a FIFO or a socket</source>
        <translation>デバイス、FIFO またはソケットです</translation>
    </message>
    <message id="globals.kNoticeTooLarge">
        <source>it is too large to show</source>
        <translation>大きすぎて表示できません</translation>
    </message>
    <message id="globals.kNoticeChanged">
        <source>%1 has changed on disk.</source>
        <translation>%1 はディスク上で変更されました。</translation>
    </message>
    <message id="globals.kNoticeChangedEdited">
        <source>%1 has changed on disk. Reloading replaces the edits in its pane; Undo brings them back.</source>
        <translation>%1 はディスク上で変更されました。再読み込みするとペインの編集内容は置き換えられます（取り消しで戻せます）。</translation>
    </message>
    <message id="globals.kNoticeChangedStyled">
        <source>%1 has changed on disk. Reloading discards the edits in its pane.</source>
        <translation>%1 はディスク上で変更されました。再読み込みするとペインの編集内容は失われます。</translation>
    </message>
    <message id="globals.kNoticeReloadAnyway">
        <source>Reload and discard edits</source>
        <translation>編集を捨てて再読み込み</translation>
    </message>
    <message id="globals.kNoticeHint">
        <source>%1 has bytes that %2 cannot read; %3 reads them all.</source>
        <translation>%1 には %2 で読めないバイトがあります。%3 ならすべて読めます。</translation>
    </message>
    <message id="globals.kNoticeUseEncoding">
        <source>Read as %1</source>
        <translation>%1 で読む</translation>
    </message>
</context>
</TS>
