<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<!-- German for the texts of the resource table and of the forms. -->
<context>
    <name>rasterkit</name>
    <!-- Start-up and filters -->
    <message>
        <source>All supported files</source>
        <translation>Alle unterstützten Dateien</translation>
    </message>
    <message>
        <source>Bitmap to large to rotate.</source>
        <translation>Das Bild ist zu groß zum Drehen.</translation>
    </message>
    <message>
        <source>Palette überschritten. Benötige 24bit Farbtiefe.</source>
        <translation>Palette überschritten. Benötige 24bit Farbtiefe.</translation>
    </message>
    <!-- Buttons -->
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Closes without changes</source>
        <translation>Schließt ohne Änderungen</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Shows help</source>
        <translation>Zeigt die Hilfe an</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Takes over the changes and closes</source>
        <translation>Übernimmt die Änderungen und schließt das Fenster</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Sets everything back</source>
        <translation>Setzt alles zurück</translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation>&amp;Nein</translation>
    </message>
    <message>
        <source>&amp;Yes</source>
        <translation>&amp;Ja</translation>
    </message>
    <!-- Picture files -->
    <message>
        <source>%s is a folder.</source>
        <translation>%s ist ein Ordner.</translation>
    </message>
    <message>
        <source>The name %s is too long.</source>
        <translation>Der Name %s ist zu lang.</translation>
    </message>
    <message>
        <source>There is no folder %s.</source>
        <translation>Den Ordner %s gibt es nicht.</translation>
    </message>
    <message>
        <source>Open picture</source>
        <translation>Bild öffnen</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>The file cannot be read as a picture</source>
        <translation>Die Datei lässt sich nicht als Bild lesen</translation>
    </message>
    <message>
        <source>Loading ...</source>
        <translation>Wird geladen ...</translation>
    </message>
    <message>
        <source>No preview</source>
        <translation>Keine Vorschau</translation>
    </message>
    <message>
        <source>Too large for a preview</source>
        <translation>Zu groß für eine Vorschau</translation>
    </message>
    <message>
        <source>%s exists already.
Replace it?</source>
        <translation>%s ist bereits vorhanden.
Möchten Sie die Datei ersetzen?</translation>
    </message>
    <message>
        <source>Save picture</source>
        <translation>Bild speichern</translation>
    </message>
    <message>
        <source>Enhanced Windows Metafile</source>
        <translation>Erweiterte Windows-Metadatei</translation>
    </message>
    <message>
        <source>JPeg</source>
        <translation>JPEG</translation>
    </message>
    <message>
        <source>PNG Format</source>
        <translation>PNG-Format</translation>
    </message>
    <message>
        <source>Windows bitmap</source>
        <translation>Windows-Bitmap</translation>
    </message>
    <message>
        <source>Windows Metafile</source>
        <translation>Windows-Metadatei</translation>
    </message>
    <!-- The crop window -->
    <message>
        <source>%d * %d px (%s [%s])</source>
        <translation>%d * %d Pixel (%s [%s])</translation>
    </message>
    <message>
        <source>Width=%d</source>
        <translation>Breite=%d</translation>
    </message>
    <message>
        <source>Height=%d</source>
        <translation>Höhe=%d</translation>
    </message>
    <message>
        <source>Bit depth[bit]=%d</source>
        <translation>Farbtiefe [Bit]=%d</translation>
    </message>
    <message>
        <source>Cut width=%d</source>
        <translation>Breite des Ausschnitts=%d</translation>
    </message>
    <message>
        <source>Cut height=%d</source>
        <translation>Höhe des Ausschnitts=%d</translation>
    </message>
    <message>
        <source>Cut memsize [%s]=%s</source>
        <translation>Speicherbedarf des Ausschnitts [%s]=%s</translation>
    </message>
    <message>
        <source>Rectangle: left %d, top %d, width %d, height %d</source>
        <translation>Rechteck: links %d, oben %d, Breite %d, Höhe %d</translation>
    </message>
    <message>
        <source>No rectangle</source>
        <translation>Kein Rechteck</translation>
    </message>
    <message>
        <source>Actual size</source>
        <translation>Originalgröße</translation>
    </message>
    <message>
        <source>&amp;Actual size</source>
        <translation>&amp;Originalgröße</translation>
    </message>
    <message>
        <source>Shows the picture pixel by pixel</source>
        <translation>Zeigt das Bild Pixel für Pixel</translation>
    </message>
    <message>
        <source>Bitmap dimensions:</source>
        <translation>Bildgröße:</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>Einpassen</translation>
    </message>
    <message>
        <source>&amp;Fit</source>
        <translation>&amp;Einpassen</translation>
    </message>
    <message>
        <source>Shows the whole picture</source>
        <translation>Zeigt das ganze Bild</translation>
    </message>
    <message>
        <source>Fit into the window</source>
        <translation>In das Fenster einpassen</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>&amp;Height</source>
        <translation>&amp;Höhe</translation>
    </message>
    <message>
        <source>Height of the rectangle in pixels</source>
        <translation>Höhe des Rechtecks in Pixeln</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>&amp;Left</source>
        <translation>&amp;Links</translation>
    </message>
    <message>
        <source>Left edge of the rectangle in pixels of the picture</source>
        <translation>Linke Kante des Rechtecks in Pixeln des Bildes</translation>
    </message>
    <message>
        <source>Lossless: the blocks of the JPEG file are moved</source>
        <translation>Verlustfrei: Die Blöcke der JPEG-Datei werden verschoben</translation>
    </message>
    <message>
        <source>Not lossless: the pixels are compressed again</source>
        <translation>Nicht verlustfrei: Die Pixel werden neu komprimiert</translation>
    </message>
    <message>
        <source>Crop picture</source>
        <translation>Bild zuschneiden</translation>
    </message>
    <message>
        <source>Picture with crop rectangle</source>
        <translation>Bild mit Zuschneiderechteck</translation>
    </message>
    <message>
        <source>Drag to draw a rectangle. Arrow keys move it, with Shift by 10 pixels, with Ctrl they resize it. The wheel, plus and minus zoom, the middle button and arrow keys with Alt pan.</source>
        <translation>Ziehen Sie mit der Maus ein Rechteck auf. Die Pfeiltasten verschieben es, mit Umschalt um 10 Pixel; mit Strg ändern sie seine Größe. Mausrad, Plus und Minus zoomen, die mittlere Maustaste und die Pfeiltasten mit Alt verschieben das Bild.</translation>
    </message>
    <message>
        <source>Drag to draw, move or resize the rectangle; turn the wheel to zoom</source>
        <translation>Ziehen Sie mit der Maus, um das Rechteck aufzuziehen, zu verschieben oder seine Größe zu ändern; das Mausrad zoomt</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>&amp;Top</source>
        <translation>Obe&amp;n</translation>
    </message>
    <message>
        <source>Top edge of the rectangle in pixels of the picture</source>
        <translation>Obere Kante des Rechtecks in Pixeln des Bildes</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>Takes back the last change of the rectangle (Ctrl+Z)</source>
        <translation>Nimmt die letzte Änderung des Rechtecks zurück (Strg+Z)</translation>
    </message>
    <message>
        <source>Whole picture</source>
        <translation>Ganzes Bild</translation>
    </message>
    <message>
        <source>Whole &amp;picture</source>
        <translation>&amp;Ganzes Bild</translation>
    </message>
    <message>
        <source>Removes the rectangle (Delete)</source>
        <translation>Entfernt das Rechteck (Entf)</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>&amp;Width</source>
        <translation>&amp;Breite</translation>
    </message>
    <message>
        <source>Width of the rectangle in pixels</source>
        <translation>Breite des Rechtecks in Pixeln</translation>
    </message>
    <!-- Change values -->
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>&amp;Blue</source>
        <translation>&amp;Blau</translation>
    </message>
    <message>
        <source>Percentage by which blue becomes stronger or weaker</source>
        <translation>Prozentsatz, um den Blau stärker oder schwächer wird</translation>
    </message>
    <message>
        <source>Brightness [%]</source>
        <translation>Helligkeit [%]</translation>
    </message>
    <message>
        <source>Br&amp;ightness [%]</source>
        <translation>&amp;Helligkeit [%]</translation>
    </message>
    <message>
        <source>Lighter above 0, darker below</source>
        <translation>Über 0 heller, unter 0 dunkler</translation>
    </message>
    <message>
        <source>Change values</source>
        <translation>Werte ändern</translation>
    </message>
    <message>
        <source>Changed</source>
        <translation>Geändert</translation>
    </message>
    <message>
        <source>What OK makes of the picture</source>
        <translation>Was OK aus dem Bild macht</translation>
    </message>
    <message>
        <source>Changed picture</source>
        <translation>Geändertes Bild</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>The color of the three numbers</source>
        <translation>Die Farbe der drei Zahlen</translation>
    </message>
    <message>
        <source>Contrast [%]</source>
        <translation>Kontrast [%]</translation>
    </message>
    <message>
        <source>&amp;Contrast [%]</source>
        <translation>&amp;Kontrast [%]</translation>
    </message>
    <message>
        <source>More contrast above 0, less below</source>
        <translation>Über 0 mehr Kontrast, unter 0 weniger</translation>
    </message>
    <message>
        <source>Gray value</source>
        <translation>Grauwert</translation>
    </message>
    <message>
        <source>Gray &amp;value</source>
        <translation>Grau&amp;wert</translation>
    </message>
    <message>
        <source>Darker colors become black, all others white</source>
        <translation>Dunklere Farben werden schwarz, alle anderen weiß</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>&amp;Green</source>
        <translation>&amp;Grün</translation>
    </message>
    <message>
        <source>Percentage by which green becomes stronger or weaker</source>
        <translation>Prozentsatz, um den Grün stärker oder schwächer wird</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>&amp;Original</source>
        <translation>&amp;Original</translation>
    </message>
    <message>
        <source>Drag the picture, or use the arrow keys, to see another part of it</source>
        <translation>Ziehen Sie das Bild mit der Maus oder benutzen Sie die Pfeiltasten, um einen anderen Teil zu sehen</translation>
    </message>
    <message>
        <source>Original picture</source>
        <translation>Originalbild</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>&amp;Red</source>
        <translation>&amp;Rot</translation>
    </message>
    <message>
        <source>Percentage by which red becomes stronger or weaker</source>
        <translation>Prozentsatz, um den Rot stärker oder schwächer wird</translation>
    </message>
    <message>
        <source>Sets everything to 0; from then on contrast, sharpness and colors count as well</source>
        <translation>Setzt alles auf 0; danach wirken auch Kontrast, Schärfe und Farben</translation>
    </message>
    <message>
        <source>Select gray value</source>
        <translation>Grauwert wählen</translation>
    </message>
    <message>
        <source>Sharpen [%]</source>
        <translation>Schärfe [%]</translation>
    </message>
    <message>
        <source>&amp;Sharpen [%]</source>
        <translation>&amp;Schärfe [%]</translation>
    </message>
    <message>
        <source>Sharper above 0, softer below</source>
        <translation>Über 0 schärfer, unter 0 weicher</translation>
    </message>
    <!-- Change size -->
    <message>
        <source>Change Size</source>
        <translation>Größe ändern</translation>
    </message>
    <message>
        <source>New height in pixels</source>
        <translation>Neue Höhe in Pixeln</translation>
    </message>
    <message>
        <source>proportional</source>
        <translation>proportional</translation>
    </message>
    <message>
        <source>&amp;proportional</source>
        <translation>&amp;proportional</translation>
    </message>
    <message>
        <source>Each number follows the other, so that the picture keeps its shape</source>
        <translation>Eine Zahl folgt der anderen, damit das Bild seine Proportionen behält</translation>
    </message>
    <message>
        <source>Width / Height</source>
        <translation>Breite / Höhe</translation>
    </message>
    <message>
        <source>&amp;Width / Height</source>
        <translation>&amp;Breite / Höhe</translation>
    </message>
    <message>
        <source>New width in pixels</source>
        <translation>Neue Breite in Pixeln</translation>
    </message>
    <!-- The editor of pictures and PDF pages -->
    <message>
        <source>Edit bitmap</source>
        <translation>Bild bearbeiten</translation>
    </message>
    <message>
        <source>Convert pdf to png</source>
        <translation>PDF in PNG umwandeln</translation>
    </message>
    <message>
        <source>Not enough RAM available for the image! Try a lower DPI-setting.</source>
        <translation>Für das Bild ist nicht genügend Arbeitsspeicher frei! Versuchen Sie es mit einer niedrigeren Auflösung (dpi).</translation>
    </message>
    <message>
        <source>%d * %d px, %d * %d mm (%s [%s])</source>
        <translation>%d * %d Pixel, %d * %d mm (%s [%s])</translation>
    </message>
    <message>
        <source>Page (total No. of pages %d)</source>
        <translation>Seite (Seiten insgesamt: %d)</translation>
    </message>
    <message>
        <source>PDF could not be rendered! Please contact Tarnwick Hotline.<byte value="xd"/>
Original error was &quot;%s&quot;: %s</source>
        <translation>Die PDF-Seite konnte nicht gezeichnet werden! Bitte wenden Sie sich an die Tarnwick-Hotline.<byte value="xd"/>
Ursprünglicher Fehler: „%s“: %s</translation>
    </message>
    <message>
        <source>The file %s cannot be read as a picture.</source>
        <translation>Die Datei %s lässt sich nicht als Bild lesen.</translation>
    </message>
    <message>
        <source>Convert to 8-Bit (256 colors)</source>
        <translation>In 8 Bit umwandeln (256 Farben)</translation>
    </message>
    <message>
        <source>Use black/white image</source>
        <translation>Schwarzweißbild verwenden</translation>
    </message>
    <message>
        <source>Cut bitmap</source>
        <translation>Bild zuschneiden</translation>
    </message>
    <message>
        <source>Bitmap dimensions: </source>
        <translation>Bildgröße: </translation>
    </message>
    <message>
        <source>Fit BMP in dialog size</source>
        <translation>Bild in das Fenster einpassen</translation>
    </message>
    <message>
        <source>Convert to grayscale</source>
        <translation>In Graustufen umwandeln</translation>
    </message>
    <message>
        <source>Edit image</source>
        <translation>Bildwerte ändern</translation>
    </message>
    <message>
        <source>Mirror image</source>
        <translation>Bild spiegeln</translation>
    </message>
    <message>
        <source>Open file...</source>
        <translation>Datei öffnen...</translation>
    </message>
    <message>
        <source>Open file</source>
        <translation>Datei öffnen</translation>
    </message>
    <message>
        <source>View BMP in original size</source>
        <translation>Bild in Originalgröße anzeigen</translation>
    </message>
    <message>
        <source>Page</source>
        <translation>Seite</translation>
    </message>
    <message>
        <source>&amp;Page</source>
        <translation>&amp;Seite</translation>
    </message>
    <message>
        <source>Page of the document</source>
        <translation>Seite des Dokuments</translation>
    </message>
    <message>
        <source>Page at this resolution: </source>
        <translation>Seite bei dieser Auflösung: </translation>
    </message>
    <message>
        <source>Drag to draw a rectangle. Arrow keys move it, with Shift by 10 pixels, with Ctrl they resize it. The wheel zooms, the middle button pans. Ctrl+H changes the size, Ctrl+Z undoes.</source>
        <translation>Ziehen Sie mit der Maus ein Rechteck auf. Die Pfeiltasten verschieben es, mit Umschalt um 10 Pixel; mit Strg ändern sie seine Größe. Das Mausrad zoomt, die mittlere Maustaste verschiebt das Bild. Strg+H ändert die Bildgröße, Strg+Z macht rückgängig.</translation>
    </message>
    <message>
        <source>The page is being rendered ...</source>
        <translation>Die Seite wird gezeichnet ...</translation>
    </message>
    <message>
        <source>The page is being rendered</source>
        <translation>Die Seite wird gezeichnet</translation>
    </message>
    <message>
        <source>Resolution [dpi]</source>
        <translation>Auflösung [dpi]</translation>
    </message>
    <message>
        <source>&amp;Resolution [dpi]</source>
        <translation>&amp;Auflösung [dpi]</translation>
    </message>
    <message>
        <source>Dots per inch of the picture; type a number and press Enter, or choose one</source>
        <translation>Punkte pro Zoll des Bildes; geben Sie eine Zahl ein und drücken Sie die Eingabetaste, oder wählen Sie eine aus</translation>
    </message>
    <message>
        <source>Resolution in dots per inch</source>
        <translation>Auflösung in Punkten pro Zoll</translation>
    </message>
    <message>
        <source>Rotation [°]</source>
        <translation>Drehung [°]</translation>
    </message>
    <message>
        <source>R&amp;otation [°]</source>
        <translation>&amp;Drehung [°]</translation>
    </message>
    <message>
        <source>Degrees, clockwise; type a number and press Enter, or choose one</source>
        <translation>Grad, im Uhrzeigersinn; geben Sie eine Zahl ein und drücken Sie die Eingabetaste, oder wählen Sie eine aus</translation>
    </message>
    <message>
        <source>Rotation in degrees</source>
        <translation>Drehung in Grad</translation>
    </message>
    <message>
        <source>Save bitmap as...</source>
        <translation>Bild speichern unter...</translation>
    </message>
    <message>
        <source>Save bitmap as</source>
        <translation>Bild speichern unter</translation>
    </message>
    <message>
        <source>Change size...</source>
        <translation>Größe ändern...</translation>
    </message>
    <message>
        <source>Remove rectangle</source>
        <translation>Rechteck entfernen</translation>
    </message>
    <!-- The save window -->
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>There are no files of this kind</source>
        <translation>Es gibt keine Dateien dieser Art</translation>
    </message>
    <message>
        <source>There is no such folder</source>
        <translation>Diesen Ordner gibt es nicht</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>The folder is being read ...</source>
        <translation>Der Ordner wird gelesen ...</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>The folder cannot be read: %s</source>
        <translation>Der Ordner lässt sich nicht lesen: %s</translation>
    </message>
    <message>
        <source>All files</source>
        <translation>Alle Dateien</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Saves under this name</source>
        <translation>Speichert unter diesem Namen</translation>
    </message>
    <message>
        <source>Choose a folder</source>
        <translation>Ordner wählen</translation>
    </message>
    <message>
        <source>Chooses another folder</source>
        <translation>Wählt einen anderen Ordner</translation>
    </message>
    <message>
        <source>Detail</source>
        <translation>Details</translation>
    </message>
    <message>
        <source>File already exists:<byte value="xd"/>&quot;%s&quot;<byte value="xd"/>Overwrite?</source>
        <translation>Die Datei ist bereits vorhanden:<byte value="xd"/>„%s“<byte value="xd"/>Überschreiben?</translation>
    </message>
    <message>
        <source>File &quot;%s&quot; already exists - overwrite?</source>
        <translation>Die Datei „%s“ ist bereits vorhanden – überschreiben?</translation>
    </message>
    <message>
        <source>Files of the folder</source>
        <translation>Dateien des Ordners</translation>
    </message>
    <message>
        <source>Choose a file to take its name; Enter opens a folder, Backspace leaves it</source>
        <translation>Wählen Sie eine Datei, um ihren Namen zu übernehmen; die Eingabetaste öffnet einen Ordner, die Rücktaste verlässt ihn</translation>
    </message>
    <message>
        <source>Filter: </source>
        <translation>Filter: </translation>
    </message>
    <message>
        <source>F&amp;ilter: </source>
        <translation>F&amp;ilter: </translation>
    </message>
    <message>
        <source>Kind of the file, and which files are listed</source>
        <translation>Art der Datei, und welche Dateien aufgelistet werden</translation>
    </message>
    <message>
        <source>One folder up</source>
        <translation>Übergeordneter Ordner</translation>
    </message>
    <message>
        <source>Save Graphics</source>
        <translation>Grafik speichern</translation>
    </message>
    <message>
        <source>List</source>
        <translation>Liste</translation>
    </message>
    <message>
        <source>File name:</source>
        <translation>Dateiname:</translation>
    </message>
    <message>
        <source>File &amp;name:</source>
        <translation>Datei&amp;name:</translation>
    </message>
    <message>
        <source>Name of the file; a folder may stand before it</source>
        <translation>Name der Datei; ein Ordner darf davorstehen</translation>
    </message>
    <message>
        <source>%s is an extension without a name.</source>
        <translation>%s ist eine Dateiendung ohne Namen.</translation>
    </message>
    <message>
        <source>The name %s is reserved by the system.</source>
        <translation>Der Name %s ist vom System reserviert.</translation>
    </message>
    <message>
        <source>The name %s has characters that a file's name cannot have.</source>
        <translation>Der Name %s enthält Zeichen, die in Dateinamen nicht erlaubt sind.</translation>
    </message>
    <message>
        <source>Settings for the file</source>
        <translation>Einstellungen für die Datei</translation>
    </message>
    <message>
        <source>Path:</source>
        <translation>Pfad:</translation>
    </message>
    <message>
        <source>&amp;Path:</source>
        <translation>&amp;Pfad:</translation>
    </message>
    <message>
        <source>The folder that is listed; type another one and press Enter</source>
        <translation>Der angezeigte Ordner; geben Sie einen anderen ein und drücken Sie die Eingabetaste</translation>
    </message>
    <message>
        <source>&amp;Options</source>
        <translation>&amp;Optionen</translation>
    </message>
    <!-- Settings of a graphic to be saved -->
    <message>
        <source>Graphics settings</source>
        <translation>Grafikeinstellungen</translation>
    </message>
    <message>
        <source>Graphics type</source>
        <translation>Grafiktyp</translation>
    </message>
    <message>
        <source>Graphics &amp;type</source>
        <translation>Grafik&amp;typ</translation>
    </message>
    <message>
        <source>Kind of the file</source>
        <translation>Art der Datei</translation>
    </message>
    <message>
        <source>TIFF</source>
        <translation>TIFF</translation>
    </message>
    <message>
        <source>Resolution / size</source>
        <translation>Auflösung / Größe</translation>
    </message>
    <message>
        <source>Dots per inch: how large the picture is on paper</source>
        <translation>Punkte pro Zoll: wie groß das Bild auf dem Papier ist</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>&amp;Settings</source>
        <translation>&amp;Einstellungen</translation>
    </message>
    <message>
        <source>Colors that the picture may have</source>
        <translation>Farben, die das Bild haben kann</translation>
    </message>
    <message>
        <source>Color depth</source>
        <translation>Farbtiefe</translation>
    </message>
    <message>
        <source>Black and white (1 bit)</source>
        <translation>Schwarzweiß (1 Bit)</translation>
    </message>
    <message>
        <source>16 colors (4 bit)</source>
        <translation>16 Farben (4 Bit)</translation>
    </message>
    <message>
        <source>256 colors (8 bit)</source>
        <translation>256 Farben (8 Bit)</translation>
    </message>
    <message>
        <source>True color (24 bit)</source>
        <translation>Echtfarben (24 Bit)</translation>
    </message>
    <message>
        <source>Compression quality</source>
        <translation>Kompressionsqualität</translation>
    </message>
    <message>
        <source>Compression &amp;quality</source>
        <translation>Kompressions&amp;qualität</translation>
    </message>
    <message>
        <source>Smaller file or better picture</source>
        <translation>Kleinere Datei oder besseres Bild</translation>
    </message>
    <message>
        <source>Maximum compression</source>
        <translation>Maximale Kompression</translation>
    </message>
    <message>
        <source>No compression</source>
        <translation>Keine Kompression</translation>
    </message>
    <message>
        <source>Minimum quality</source>
        <translation>Minimale Qualität</translation>
    </message>
    <message>
        <source>Maximum quality</source>
        <translation>Maximale Qualität</translation>
    </message>
    <message>
        <source>Bitmap size [pixels]</source>
        <translation>Bildgröße [Pixel]</translation>
    </message>
    <message>
        <source>Width x Height</source>
        <translation>Breite x Höhe</translation>
    </message>
    <message>
        <source>&amp;Width x Height</source>
        <translation>&amp;Breite x Höhe</translation>
    </message>
    <message>
        <source>Size of Windows bitmap</source>
        <translation>Größe als Windows-Bitmap</translation>
    </message>
    <message>
        <source>Size in mm</source>
        <translation>Größe in mm</translation>
    </message>
    <message>
        <source>[byte]</source>
        <translation>[Byte]</translation>
    </message>
    <message>
        <source>[kB]</source>
        <translation>[kB]</translation>
    </message>
    <message>
        <source>[MB]</source>
        <translation>[MB]</translation>
    </message>
    <message>
        <source>Save picture as</source>
        <translation>Bild speichern unter</translation>
    </message>
    <message>
        <source>Settings of the file</source>
        <translation>Einstellungen der Datei</translation>
    </message>
    <message>
        <source>Open a picture</source>
        <translation>Ein Bild öffnen</translation>
    </message>
    <message>
        <source>Fo&amp;lder</source>
        <translation>&amp;Ordner</translation>
    </message>
    <message>
        <source>Se&amp;ttings and 1:1 view</source>
        <translation>&amp;Einstellungen und 1:1-Ansicht</translation>
    </message>
    <message>
        <source>Places</source>
        <translation>Orte</translation>
    </message>
    <message>
        <source>Opens one of these folders</source>
        <translation>Öffnet einen dieser Ordner</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Persönlicher Ordner</translation>
    </message>
    <message>
        <source>Desktop</source>
        <translation>Schreibtisch</translation>
    </message>
    <message>
        <source>Documents</source>
        <translation>Dokumente</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Downloads</source>
        <translation>Heruntergeladenes</translation>
    </message>
    <message>
        <source>Folder of the picture</source>
        <translation>Ordner des Bilds</translation>
    </message>
    <message>
        <source>In f&amp;older:</source>
        <translation>Im O&amp;rdner:</translation>
    </message>
    <message>
        <source>Opens the folder above</source>
        <translation>Öffnet den Ordner darüber</translation>
    </message>
    <message>
        <source>&amp;Name:</source>
        <translation>&amp;Name:</translation>
    </message>
    <message>
        <source>Name of the file; a folder may stand before it. The ending decides on the kind</source>
        <translation>Name der Datei; ein Ordner darf davor stehen. Die Endung bestimmt die Art</translation>
    </message>
    <message>
        <source>&amp;Kind:</source>
        <translation>&amp;Art:</translation>
    </message>
    <message>
        <source>Kind of the file; the ending of the name follows</source>
        <translation>Art der Datei; die Endung des Namens folgt</translation>
    </message>
    <message>
        <source>&amp;File:</source>
        <translation>Date&amp;i:</translation>
    </message>
    <message>
        <source>The file that is written</source>
        <translation>Die Datei, die geschrieben wird</translation>
    </message>
    <message>
        <source>&amp;Other name ...</source>
        <translation>An&amp;derer Name ...</translation>
    </message>
    <message>
        <source>Asks for another folder or name</source>
        <translation>Fragt nach einem anderen Ordner oder Namen</translation>
    </message>
    <message>
        <source>Saves the picture with these settings</source>
        <translation>Speichert das Bild mit diesen Einstellungen</translation>
    </message>
    <message>
        <source>BMP bitmap (%s)</source>
        <translation>BMP-Bitmap (%s)</translation>
    </message>
    <message>
        <source>JPEG photograph (%s)</source>
        <translation>JPEG-Foto (%s)</translation>
    </message>
    <message>
        <source>PNG picture (%s)</source>
        <translation>PNG-Bild (%s)</translation>
    </message>
    <message>
        <source>TIFF picture (%s)</source>
        <translation>TIFF-Bild (%s)</translation>
    </message>
    <message>
        <source>%s picture (%s)</source>
        <translation>%s-Bild (%s)</translation>
    </message>
    <message>
        <source>All pictures (%s)</source>
        <translation>Alle Bilder (%s)</translation>
    </message>
    <message>
        <source>All files (%s)</source>
        <translation>Alle Dateien (%s)</translation>
    </message>
    <message>
        <source>%s files cannot be written. %s is suggested: it keeps every pixel.</source>
        <translation>%s-Dateien können nicht geschrieben werden. Vorgeschlagen ist %s: So bleibt jedes Pixel erhalten.</translation>
    </message>
    <message>
        <source>%s files cannot be written. %s is suggested: it keeps more than 8 bits per color.</source>
        <translation>%s-Dateien können nicht geschrieben werden. Vorgeschlagen ist %s: So bleiben mehr als 8 Bit je Farbe erhalten.</translation>
    </message>
    <message>
        <source>%s files cannot be written. %s is suggested: it keeps the position on the map.</source>
        <translation>%s-Dateien können nicht geschrieben werden. Vorgeschlagen ist %s: So bleibt die Lage auf der Karte erhalten.</translation>
    </message>
    <message>
        <source>The name ends with a space.</source>
        <translation>Der Name endet mit einem Leerzeichen.</translation>
    </message>
    <message>
        <source>%s × %s pixels, %s bits per pixel, %s in memory</source>
        <translation>%s × %s Pixel, %s Bit je Pixel, %s im Speicher</translation>
    </message>
    <message>
        <source>%s dpi</source>
        <translation>%s dpi</translation>
    </message>
    <message>
        <source>%s × %s dpi</source>
        <translation>%s × %s dpi</translation>
    </message>
    <message>
        <source>no resolution stated</source>
        <translation>keine Auflösung angegeben</translation>
    </message>
    <message>
        <source>%s bytes</source>
        <translation>%s Byte</translation>
    </message>
    <message>
        <source>%s KiB</source>
        <translation>%s KiB</translation>
    </message>
    <message>
        <source>%s MiB</source>
        <translation>%s MiB</translation>
    </message>
    <message>
        <source>%s GiB</source>
        <translation>%s GiB</translation>
    </message>
    <message>
        <source>&amp;Depth:</source>
        <translation>&amp;Farbtiefe:</translation>
    </message>
    <message>
        <source>Bits per pixel of the file</source>
        <translation>Bit je Pixel der Datei</translation>
    </message>
    <message>
        <source>As it is (%s bits)</source>
        <translation>Wie das Bild (%s Bit)</translation>
    </message>
    <message>
        <source>%s bits</source>
        <translation>%s Bit</translation>
    </message>
    <message>
        <source>32 bits: color and opacity</source>
        <translation>32 Bit: Farbe und Deckkraft</translation>
    </message>
    <message>
        <source>24 bits: color</source>
        <translation>24 Bit: Farbe</translation>
    </message>
    <message>
        <source>8 bits: 256 colors</source>
        <translation>8 Bit: 256 Farben</translation>
    </message>
    <message>
        <source>4 bits: 16 colors</source>
        <translation>4 Bit: 16 Farben</translation>
    </message>
    <message>
        <source>1 bit: black and white</source>
        <translation>1 Bit: schwarz-weiß</translation>
    </message>
    <message>
        <source>Q&amp;uality as in the source</source>
        <translation>&amp;Qualität wie in der Quelle</translation>
    </message>
    <message>
        <source>Uses the same tables as the source, so that the quality does not change</source>
        <translation>Nimmt die Tabellen der Quelle, damit sich die Qualität nicht ändert</translation>
    </message>
    <message>
        <source>Us&amp;ual quality (90)</source>
        <translation>Übliche &amp;Qualität (90)</translation>
    </message>
    <message>
        <source>The quality for pictures that were no JPEG file</source>
        <translation>Die Qualität für Bilder, die keine JPEG-Datei waren</translation>
    </message>
    <message>
        <source>&amp;Quality:</source>
        <translation>Q&amp;ualität:</translation>
    </message>
    <message>
        <source>1 (small file) to 100 (best); 90 shows hardly any difference</source>
        <translation>1 (kleine Datei) bis 100 (beste); bei 90 ist kaum ein Unterschied zu sehen</translation>
    </message>
    <message>
        <source>Quality as a number</source>
        <translation>Qualität als Zahl</translation>
    </message>
    <message>
        <source>Color d&amp;etail:</source>
        <translation>Far&amp;bdetails:</translation>
    </message>
    <message>
        <source>How finely a JPEG file stores color; brightness is always stored in full</source>
        <translation>Wie fein eine JPEG-Datei Farbe speichert; Helligkeit wird immer voll gespeichert</translation>
    </message>
    <message>
        <source>As in the source (%s)</source>
        <translation>Wie in der Quelle (%s)</translation>
    </message>
    <message>
        <source>Usual for the quality</source>
        <translation>Wie üblich für die Qualität</translation>
    </message>
    <message>
        <source>Full color (4:4:4)</source>
        <translation>Volle Farbe (4:4:4)</translation>
    </message>
    <message>
        <source>Half color (4:2:2)</source>
        <translation>Halbe Farbe (4:2:2)</translation>
    </message>
    <message>
        <source>Quarter color (4:2:0)</source>
        <translation>Viertel der Farbe (4:2:0)</translation>
    </message>
    <message>
        <source>&amp;Blocks:</source>
        <translation>B&amp;löcke:</translation>
    </message>
    <message>
        <source>Whether compressed pixels that only move are kept as they are</source>
        <translation>Ob komprimierte Pixel, die nur ihren Platz wechseln, bleiben, wie sie sind</translation>
    </message>
    <message>
        <source>Kept where nothing is cut off</source>
        <translation>Behalten, wo nichts wegfällt</translation>
    </message>
    <message>
        <source>Kept; edges are cut to whole blocks</source>
        <translation>Behalten, Ränder auf ganze Blöcke kürzen</translation>
    </message>
    <message>
        <source>Compressed again</source>
        <translation>Neu komprimieren</translation>
    </message>
    <message>
        <source>Co&amp;mpression:</source>
        <translation>&amp;Kompression:</translation>
    </message>
    <message>
        <source>How a TIFF file is packed; every choice keeps every pixel</source>
        <translation>Wie eine TIFF-Datei gepackt wird; jede Wahl erhält jedes Pixel</translation>
    </message>
    <message>
        <source>As in the source</source>
        <translation>Wie in der Quelle</translation>
    </message>
    <message>
        <source>Usual (LZW, or G4 for black and white)</source>
        <translation>Üblich (LZW, bei schwarz-weiß G4)</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>G4 (black and white only)</source>
        <translation>G4 (nur schwarz-weiß)</translation>
    </message>
    <message>
        <source>&amp;Packing:</source>
        <translation>&amp;Packen:</translation>
    </message>
    <message>
        <source>How hard a PNG file is packed; every choice keeps every pixel</source>
        <translation>Wie stark eine PNG-Datei gepackt wird; jede Wahl erhält jedes Pixel</translation>
    </message>
    <message>
        <source>Chosen by the picture</source>
        <translation>Passend zum Bild</translation>
    </message>
    <message>
        <source>0: not packed</source>
        <translation>0: nicht gepackt</translation>
    </message>
    <message>
        <source>1: quick</source>
        <translation>1: schnell</translation>
    </message>
    <message>
        <source>12: smallest, slow</source>
        <translation>12: am kleinsten, langsam</translation>
    </message>
    <message>
        <source>&amp;Information:</source>
        <translation>An&amp;gaben:</translation>
    </message>
    <message>
        <source>What the file states about the picture: camera, date, place, comments</source>
        <translation>Was die Datei über das Bild sagt: Kamera, Datum, Ort, Kommentare</translation>
    </message>
    <message>
        <source>Keep all</source>
        <translation>Alle behalten</translation>
    </message>
    <message>
        <source>Without the place of the photograph</source>
        <translation>Ohne den Ort der Aufnahme</translation>
    </message>
    <message>
        <source>Keep nothing</source>
        <translation>Keine behalten</translation>
    </message>
    <message>
        <source>Lossless: the compressed pixels are copied</source>
        <translation>Verlustfrei: Die komprimierten Pixel werden kopiert</translation>
    </message>
    <message>
        <source>Lossless: the compressed pixels are moved</source>
        <translation>Verlustfrei: Die komprimierten Pixel werden verschoben</translation>
    </message>
    <message>
        <source>Lossless: the compressed pixels are moved, edges are cut to whole blocks</source>
        <translation>Verlustfrei: Die komprimierten Pixel werden verschoben, Ränder auf ganze Blöcke gekürzt</translation>
    </message>
    <message>
        <source>Lossless: every pixel is kept</source>
        <translation>Verlustfrei: Jedes Pixel bleibt erhalten</translation>
    </message>
    <message>
        <source>Not lossless: %s</source>
        <translation>Nicht verlustfrei: %s</translation>
    </message>
    <message>
        <source>Compressed again: %s</source>
        <translation>Neu komprimiert: %s</translation>
    </message>
    <message>
        <source>the new edges are not on the borders of its blocks</source>
        <translation>Die neuen Ränder liegen nicht auf den Grenzen der Blöcke</translation>
    </message>
    <message>
        <source>the blocks of this file cannot be moved</source>
        <translation>Die Blöcke dieser Datei können nicht verschoben werden</translation>
    </message>
    <message>
        <source>a JPEG file does not keep every pixel</source>
        <translation>Eine JPEG-Datei erhält nicht jedes Pixel</translation>
    </message>
    <message>
        <source>the settings differ from the source</source>
        <translation>Die Einstellungen weichen von der Quelle ab</translation>
    </message>
    <message>
        <source>the pixels were changed</source>
        <translation>Die Pixel wurden geändert</translation>
    </message>
    <message>
        <source>it was chosen so</source>
        <translation>So gewählt</translation>
    </message>
    <message>
        <source>the file has another depth</source>
        <translation>Die Datei hat eine andere Farbtiefe</translation>
    </message>
    <message>
        <source>Nothing is lost</source>
        <translation>Nichts geht verloren</translation>
    </message>
    <message>
        <source>Lost: %s</source>
        <translation>Verloren: %s</translation>
    </message>
    <message>
        <source>&amp;What is lost</source>
        <translation>&amp;Was verloren geht</translation>
    </message>
    <message>
        <source>Lists what the file will lack, and why</source>
        <translation>Zeigt, was der Datei fehlen wird und warum</translation>
    </message>
    <message>
        <source>What the file will lack, and why</source>
        <translation>Was der Datei fehlen wird und warum</translation>
    </message>
    <message>
        <source>Size of the file: at most %s</source>
        <translation>Größe der Datei: höchstens %s</translation>
    </message>
    <message>
        <source>Size of the file: at most %s (being computed, %s percent)</source>
        <translation>Größe der Datei: höchstens %s (wird berechnet, %s Prozent)</translation>
    </message>
    <message>
        <source>Size of the file: %s</source>
        <translation>Größe der Datei: %s</translation>
    </message>
    <message>
        <source>Size of the file: %s (was %s)</source>
        <translation>Größe der Datei: %s (vorher %s)</translation>
    </message>
    <message>
        <source>Size of the file: unknown</source>
        <translation>Größe der Datei: unbekannt</translation>
    </message>
    <message>
        <source>Before</source>
        <translation>Vorher</translation>
    </message>
    <message>
        <source>As saved</source>
        <translation>Gespeichert</translation>
    </message>
    <message>
        <source>The picture before saving, 1:1. Drag it or use the arrow keys to see another part</source>
        <translation>Das Bild vor dem Speichern, 1:1. Ziehen oder Pfeiltasten zeigen einen anderen Teil</translation>
    </message>
    <message>
        <source>The picture as it will be saved, 1:1. Drag it or use the arrow keys to see another part</source>
        <translation>Das Bild, wie es gespeichert wird, 1:1. Ziehen oder Pfeiltasten zeigen einen anderen Teil</translation>
    </message>
    <message>
        <source>Part from %s, %s: %s × %s pixels</source>
        <translation>Teil ab %s, %s: %s × %s Pixel</translation>
    </message>
    <message>
        <source>As saved: the same pixels</source>
        <translation>Gespeichert: dieselben Pixel</translation>
    </message>
    <message>
        <source>As saved: being computed ...</source>
        <translation>Gespeichert: wird berechnet ...</translation>
    </message>
    <message>
        <source>As saved: cannot be shown</source>
        <translation>Gespeichert: kann nicht gezeigt werden</translation>
    </message>
    <message>
        <source>Type a name for the file.</source>
        <translation>Geben Sie der Datei einen Namen.</translation>
    </message>
    <message>
        <source>There is no free name beside %s. Type a name for the file.</source>
        <translation>In %s ist kein Name frei. Geben Sie der Datei einen Namen.</translation>
    </message>
    <message>
        <source>Files cannot be written into the folder %s.</source>
        <translation>In den Ordner %s können keine Dateien geschrieben werden.</translation>
    </message>
    <message>
        <source>%s files cannot be written. Choose another kind.</source>
        <translation>%s-Dateien können nicht geschrieben werden. Wählen Sie eine andere Art.</translation>
    </message>
    <message>
        <source>The file %s cannot be written.</source>
        <translation>Die Datei %s kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>It cannot be saved so: %s</source>
        <translation>So kann es nicht gespeichert werden: %s</translation>
    </message>
    <message>
        <source>depth</source>
        <translation>Farbtiefe</translation>
    </message>
    <message>
        <source>colors</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>color detail</source>
        <translation>Farbdetails</translation>
    </message>
    <message>
        <source>opacity</source>
        <translation>Deckkraft</translation>
    </message>
    <message>
        <source>transparent color</source>
        <translation>durchsichtige Farbe</translation>
    </message>
    <message>
        <source>mark of empty pixels</source>
        <translation>Kennzeichen leerer Pixel</translation>
    </message>
    <message>
        <source>damaged pixels</source>
        <translation>beschädigte Pixel</translation>
    </message>
    <message>
        <source>other pages</source>
        <translation>andere Seiten</translation>
    </message>
    <message>
        <source>other frames</source>
        <translation>andere Einzelbilder</translation>
    </message>
    <message>
        <source>hidden pictures</source>
        <translation>verborgene Bilder</translation>
    </message>
    <message>
        <source>position on the map</source>
        <translation>Lage auf der Karte</translation>
    </message>
    <message>
        <source>control points</source>
        <translation>Passpunkte</translation>
    </message>
    <message>
        <source>coordinate system</source>
        <translation>Koordinatensystem</translation>
    </message>
    <message>
        <source>file beside it</source>
        <translation>Datei daneben</translation>
    </message>
    <message>
        <source>photograph's data</source>
        <translation>Aufnahmedaten</translation>
    </message>
    <message>
        <source>place of the photograph</source>
        <translation>Ort der Aufnahme</translation>
    </message>
    <message>
        <source>XMP description</source>
        <translation>XMP-Beschreibung</translation>
    </message>
    <message>
        <source>IPTC description</source>
        <translation>IPTC-Beschreibung</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>Kommentar</translation>
    </message>
    <message>
        <source>texts</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>color profile</source>
        <translation>Farbprofil</translation>
    </message>
    <message>
        <source>resolution</source>
        <translation>Auflösung</translation>
    </message>
    <message>
        <source>thumbnail</source>
        <translation>Vorschaubild</translation>
    </message>
    <message>
        <source>notes of the camera's maker</source>
        <translation>Notizen des Kameraherstellers</translation>
    </message>
    <message>
        <source>data of other programs</source>
        <translation>Daten anderer Programme</translation>
    </message>
    <message>
        <source>tiles</source>
        <translation>Kacheln</translation>
    </message>
    <message>
        <source>drawing records</source>
        <translation>Zeichenbefehle</translation>
    </message>
    <message>
        <source>see what is lost</source>
        <translation>Siehe die Verluste</translation>
    </message>
    <message>
        <source>Shows places and files</source>
        <translation>Zeigt Orte und Dateien</translation>
    </message>
    <message>
        <source>Shows the settings of the file and the picture before and after saving</source>
        <translation>Zeigt die Einstellungen der Datei und das Bild vor und nach dem Speichern</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>LZW</source>
        <translation>LZW</translation>
    </message>
    <message>
        <source>Deflate</source>
        <translation>Deflate</translation>
    </message>
    <message>
        <source>PackBits</source>
        <translation>PackBits</translation>
    </message>
</context>
</TS>
