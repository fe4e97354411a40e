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
        <source>Drag to draw a rectangle; with Shift it keeps its ratio, with Ctrl its center. Double click and Enter crop. Arrow keys move it, with Shift by 10 pixels, with Ctrl they resize it. The wheel, plus and minus zoom, the middle button and arrow keys with Alt pan.</source>
        <translation>Ziehen zeichnet ein Rechteck; mit Umschalt behält es sein Verhältnis, mit Strg seine Mitte. Doppelklick und Eingabe schneiden zu. Pfeiltasten verschieben es, mit Umschalt um 10 Pixel, mit Strg ändern sie die Größe. Rad, Plus und Minus zoomen, die mittlere Taste und Pfeiltasten mit Alt verschieben das Bild.</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>Makes the change of the rectangle again (Ctrl+Y)</source>
        <translation>Macht die Änderung des Rechtecks noch einmal (Strg+Y)</translation>
    </message>
    <message>
        <source>U&amp;nit</source>
        <translation>Einhei&amp;t</translation>
    </message>
    <message>
        <source>Unit of the numbers below</source>
        <translation>Einheit der Zahlen darunter</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>Percent</source>
        <translation>Prozent</translation>
    </message>
    <message>
        <source>Millimeters on paper</source>
        <translation>Millimeter auf Papier</translation>
    </message>
    <message>
        <source>Map</source>
        <translation>Karte</translation>
    </message>
    <message>
        <source>Map (%s)</source>
        <translation>Karte (%s)</translation>
    </message>
    <message>
        <source>Needs a resolution: this picture states none</source>
        <translation>Braucht eine Auflösung: Dieses Bild nennt keine</translation>
    </message>
    <message>
        <source>Needs a position on a map: this picture states none</source>
        <translation>Braucht eine Lage auf einer Karte: Dieses Bild nennt keine</translation>
    </message>
    <message>
        <source>Unit of the map</source>
        <translation>Einheit der Karte</translation>
    </message>
    <message>
        <source>Unit of the &amp;map</source>
        <translation>Einheit der &amp;Karte</translation>
    </message>
    <message>
        <source>The picture does not say in which unit its map coordinates are</source>
        <translation>Das Bild sagt nicht, in welcher Einheit seine Kartenkoordinaten sind</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Meters</source>
        <translation>Meter</translation>
    </message>
    <message>
        <source>Feet</source>
        <translation>Fuß</translation>
    </message>
    <message>
        <source>US survey feet</source>
        <translation>US-Vermessungsfuß</translation>
    </message>
    <message>
        <source>Degrees</source>
        <translation>Grad</translation>
    </message>
    <message>
        <source>Left edge of the rectangle; x on the map</source>
        <translation>Linke Kante des Rechtecks; x auf der Karte</translation>
    </message>
    <message>
        <source>Top edge of the rectangle; y on the map</source>
        <translation>Obere Kante des Rechtecks; y auf der Karte</translation>
    </message>
    <message>
        <source>Width along the side of the picture</source>
        <translation>Breite entlang der Seite des Bildes</translation>
    </message>
    <message>
        <source>Height along the side of the picture</source>
        <translation>Höhe entlang der Seite des Bildes</translation>
    </message>
    <message>
        <source>Ratio</source>
        <translation>Verhältnis</translation>
    </message>
    <message>
        <source>Rati&amp;o</source>
        <translation>&amp;Verhältnis</translation>
    </message>
    <message>
        <source>Proportion that the rectangle keeps</source>
        <translation>Verhältnis der Seiten, welches das Rechteck behält</translation>
    </message>
    <message>
        <source>Free</source>
        <translation>Frei</translation>
    </message>
    <message>
        <source>As the picture</source>
        <translation>Wie das Bild</translation>
    </message>
    <message>
        <source>1:1</source>
        <translation>1:1</translation>
    </message>
    <message>
        <source>ISO A portrait</source>
        <translation>DIN A hoch</translation>
    </message>
    <message>
        <source>ISO A landscape</source>
        <translation>DIN A quer</translation>
    </message>
    <message>
        <source>4:3</source>
        <translation>4:3</translation>
    </message>
    <message>
        <source>3:2</source>
        <translation>3:2</translation>
    </message>
    <message>
        <source>16:9</source>
        <translation>16:9</translation>
    </message>
    <message>
        <source>Typed</source>
        <translation>Eingegeben</translation>
    </message>
    <message>
        <source>Paper at a scale</source>
        <translation>Papier im Maßstab</translation>
    </message>
    <message>
        <source>Needs a position on a map in meters or feet</source>
        <translation>Braucht eine Lage auf einer Karte in Metern oder Fuß</translation>
    </message>
    <message>
        <source>Swap</source>
        <translation>Tauschen</translation>
    </message>
    <message>
        <source>&amp;Swap</source>
        <translation>Ta&amp;uschen</translation>
    </message>
    <message>
        <source>Exchanges width and height</source>
        <translation>Vertauscht Breite und Höhe</translation>
    </message>
    <message>
        <source>Sides</source>
        <translation>Seiten</translation>
    </message>
    <message>
        <source>Si&amp;des</source>
        <translation>&amp;Seiten</translation>
    </message>
    <message>
        <source>Width of the ratio</source>
        <translation>Breite des Verhältnisses</translation>
    </message>
    <message>
        <source>Height of the ratio</source>
        <translation>Höhe des Verhältnisses</translation>
    </message>
    <message>
        <source>Paper</source>
        <translation>Papier</translation>
    </message>
    <message>
        <source>Pap&amp;er</source>
        <translation>&amp;Papier</translation>
    </message>
    <message>
        <source>Sheet that shows the rectangle at the scale</source>
        <translation>Blatt, welches das Rechteck im Maßstab zeigt</translation>
    </message>
    <message>
        <source>Scale 1:</source>
        <translation>Maßstab 1:</translation>
    </message>
    <message>
        <source>S&amp;cale 1:</source>
        <translation>&amp;Maßstab 1:</translation>
    </message>
    <message>
        <source>Scale of the map on paper</source>
        <translation>Maßstab der Karte auf Papier</translation>
    </message>
    <message>
        <source>500 stands for 1:500</source>
        <translation>500 steht für 1:500</translation>
    </message>
    <message>
        <source>Guides</source>
        <translation>Hilfslinien</translation>
    </message>
    <message>
        <source>&amp;Guides</source>
        <translation>H&amp;ilfslinien</translation>
    </message>
    <message>
        <source>Lines inside the rectangle</source>
        <translation>Linien im Rechteck</translation>
    </message>
    <message>
        <source>No guides</source>
        <translation>Keine Hilfslinien</translation>
    </message>
    <message>
        <source>Thirds</source>
        <translation>Drittel</translation>
    </message>
    <message>
        <source>Center</source>
        <translation>Mitte</translation>
    </message>
    <message>
        <source>%s x %s pixels, %s %s</source>
        <translation>%s x %s Pixel, %s %s</translation>
    </message>
    <message>
        <source>Ratio %s:%s</source>
        <translation>Verhältnis %s:%s</translation>
    </message>
    <message>
        <source>%s dpi: %s x %s mm on paper</source>
        <translation>%s dpi: %s x %s mm auf Papier</translation>
    </message>
    <message>
        <source>No resolution is stated</source>
        <translation>Keine Auflösung angegeben</translation>
    </message>
    <message>
        <source>On the map: from %s, %s to %s, %s; the sides are %s x %s</source>
        <translation>Auf der Karte: von %s; %s bis %s; %s, Seiten %s x %s</translation>
    </message>
    <message>
        <source>No position on a map is stated</source>
        <translation>Keine Lage auf einer Karte angegeben</translation>
    </message>
    <message>
        <source>Mouse: %s, %s px</source>
        <translation>Maus: %s; %s px</translation>
    </message>
    <message>
        <source>Mouse: %s, %s px; %s, %s</source>
        <translation>Maus: %s; %s px, %s; %s</translation>
    </message>
    <message>
        <source>Mouse: not on the picture</source>
        <translation>Maus: nicht auf dem Bild</translation>
    </message>
    <message>
        <source>%s became %s %s, the nearest pixel corner</source>
        <translation>%s wurde zu %s %s, der nächsten Pixelecke</translation>
    </message>
    <message>
        <source>The sheet needs %s x %s pixels, more than the picture has</source>
        <translation>Das Blatt braucht %s x %s Pixel, mehr als das Bild hat</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>%d x %d pixels, %s %s</source>
        <translation>%d x %d Pixel, %s %s</translation>
    </message>
    <message>
        <source>%s dpi</source>
        <translation>%s dpi</translation>
    </message>
    <message>
        <source>%s x %s dpi</source>
        <translation>%s x %s dpi</translation>
    </message>
    <message>
        <source>no resolution</source>
        <translation>keine Auflösung</translation>
    </message>
    <message>
        <source>Width and height must be %d to %d pixels. This size has %s x %s.</source>
        <translation>Breite und Höhe müssen %d bis %d Pixel sein. Diese Größe hat %s x %s.</translation>
    </message>
    <message>
        <source>The limits of this program allow no picture of %s x %s pixels.</source>
        <translation>Die Grenzen dieses Programms erlauben kein Bild mit %s x %s Pixeln.</translation>
    </message>
    <message>
        <source>This size needs %s %s of memory. The limit is %s %s.</source>
        <translation>Diese Größe braucht %s %s Speicher. Die Grenze ist %s %s.</translation>
    </message>
    <message>
        <source>Millimeters need a resolution of %d to %d dpi.</source>
        <translation>Millimeter brauchen eine Auflösung von %d bis %d dpi.</translation>
    </message>
    <message>
        <source>The picture has this size.</source>
        <translation>Das Bild hat diese Größe.</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>&amp;Filter</source>
        <translation>&amp;Filter</translation>
    </message>
    <message>
        <source>area (to make smaller)</source>
        <translation>Fläche (zum Verkleinern)</translation>
    </message>
    <message>
        <source>automatic</source>
        <translation>automatisch</translation>
    </message>
    <message>
        <source>How the new pixels follow from the old ones</source>
        <translation>Wie die neuen Pixel aus den alten entstehen</translation>
    </message>
    <message>
        <source>linear (smooth)</source>
        <translation>linear (weich)</translation>
    </message>
    <message>
        <source>nearest pixel (hard edges)</source>
        <translation>nächstes Pixel (harte Kanten)</translation>
    </message>
    <message>
        <source>New height in the chosen unit</source>
        <translation>Neue Höhe in der gewählten Einheit</translation>
    </message>
    <message>
        <source>Keep proportion</source>
        <translation>Seitenverhältnis behalten</translation>
    </message>
    <message>
        <source>&amp;Keep proportion</source>
        <translation>&amp;Seitenverhältnis behalten</translation>
    </message>
    <message>
        <source>Picture:</source>
        <translation>Bild:</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>R&amp;edo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>Un&amp;do</source>
        <translation>Rückgän&amp;gig</translation>
    </message>
    <message>
        <source>Makes the change again (Ctrl+Y)</source>
        <translation>Führt die Änderung wieder aus (Strg+Y)</translation>
    </message>
    <message>
        <source>Dots per inch at which millimeters become pixels</source>
        <translation>Punkte je Zoll, mit denen Millimeter zu Pixeln werden</translation>
    </message>
    <message>
        <source>Resolution</source>
        <translation>Auflösung</translation>
    </message>
    <message>
        <source>Result:</source>
        <translation>Ergebnis:</translation>
    </message>
    <message>
        <source>Takes back the last change (Ctrl+Z)</source>
        <translation>Nimmt die letzte Änderung zurück (Strg+Z)</translation>
    </message>
    <message>
        <source>Unit</source>
        <translation>Einheit</translation>
    </message>
    <message>
        <source>&amp;Unit</source>
        <translation>&amp;Einheit</translation>
    </message>
    <message>
        <source>Unit of width and height</source>
        <translation>Einheit von Breite und Höhe</translation>
    </message>
    <message>
        <source>millimeters</source>
        <translation>Millimeter</translation>
    </message>
    <message>
        <source>percent</source>
        <translation>Prozent</translation>
    </message>
    <message>
        <source>pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>New width in the chosen unit</source>
        <translation>Neue Breite in der gewählten Einheit</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Picture</source>
        <translation>B&amp;ild</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>A&amp;nsicht</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Öffnen...</translation>
    </message>
    <message>
        <source>Opens another file in this window</source>
        <translation>Öffnet eine andere Datei in diesem Fenster</translation>
    </message>
    <message>
        <source>Writes the file and stays here</source>
        <translation>Schreibt die Datei und bleibt hier</translation>
    </message>
    <message>
        <source>Save &amp;as...</source>
        <translation>Speichern &amp;unter...</translation>
    </message>
    <message>
        <source>Writes another file</source>
        <translation>Schreibt eine andere Datei</translation>
    </message>
    <message>
        <source>Se&amp;ttings of the file...</source>
        <translation>&amp;Einstellungen der Datei...</translation>
    </message>
    <message>
        <source>Changes quality, compression and depth of the file that is written</source>
        <translation>Ändert Qualität, Kompression und Farbtiefe der geschriebenen Datei</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>Closes the window; asks if work would be lost</source>
        <translation>Schließt das Fenster; fragt, wenn Arbeit verloren ginge</translation>
    </message>
    <message>
        <source>Takes back the last step</source>
        <translation>Nimmt den letzten Schritt zurück</translation>
    </message>
    <message>
        <source>Makes the step again that was taken back</source>
        <translation>Führt den zurückgenommenen Schritt wieder aus</translation>
    </message>
    <message>
        <source>Turn &amp;left</source>
        <translation>Nach &amp;links drehen</translation>
    </message>
    <message>
        <source>Turns the picture by a quarter to the left</source>
        <translation>Dreht das Bild um ein Viertel nach links</translation>
    </message>
    <message>
        <source>Turn &amp;right</source>
        <translation>Nach &amp;rechts drehen</translation>
    </message>
    <message>
        <source>Turns the picture by a quarter to the right</source>
        <translation>Dreht das Bild um ein Viertel nach rechts</translation>
    </message>
    <message>
        <source>&amp;Mirror</source>
        <translation>&amp;Spiegeln</translation>
    </message>
    <message>
        <source>Exchanges left and right</source>
        <translation>Vertauscht links und rechts</translation>
    </message>
    <message>
        <source>&amp;Flip</source>
        <translation>Auf den &amp;Kopf spiegeln</translation>
    </message>
    <message>
        <source>Exchanges top and bottom</source>
        <translation>Vertauscht oben und unten</translation>
    </message>
    <message>
        <source>R&amp;otate by an angle...</source>
        <translation>Um &amp;Winkel drehen...</translation>
    </message>
    <message>
        <source>Goes to the number field of the angle</source>
        <translation>Geht zum Zahlenfeld des Winkels</translation>
    </message>
    <message>
        <source>&amp;Crop...</source>
        <translation>&amp;Zuschneiden...</translation>
    </message>
    <message>
        <source>Keeps a part of the picture</source>
        <translation>Behält einen Teil des Bildes</translation>
    </message>
    <message>
        <source>&amp;Size...</source>
        <translation>&amp;Größe...</translation>
    </message>
    <message>
        <source>Gives the picture another size</source>
        <translation>Gibt dem Bild eine andere Größe</translation>
    </message>
    <message>
        <source>&amp;Values...</source>
        <translation>&amp;Farbwerte...</translation>
    </message>
    <message>
        <source>Changes brightness, contrast, sharpness and colors</source>
        <translation>Ändert Helligkeit, Kontrast, Schärfe und Farben</translation>
    </message>
    <message>
        <source>&amp;Gray</source>
        <translation>Gra&amp;u</translation>
    </message>
    <message>
        <source>Replaces colors by shades of gray</source>
        <translation>Ersetzt Farben durch Graustufen</translation>
    </message>
    <message>
        <source>&amp;Black and white...</source>
        <translation>Schwarz und w&amp;eiß...</translation>
    </message>
    <message>
        <source>Replaces colors by black and white</source>
        <translation>Ersetzt Farben durch Schwarz und Weiß</translation>
    </message>
    <message>
        <source>2&amp;56 colors</source>
        <translation>2&amp;56 Farben</translation>
    </message>
    <message>
        <source>Reduces the picture to a palette of 256 colors</source>
        <translation>Verringert das Bild auf eine Palette von 256 Farben</translation>
    </message>
    <message>
        <source>Shows each pixel of the picture as one of the screen</source>
        <translation>Zeigt jedes Pixel des Bildes als eines des Bildschirms</translation>
    </message>
    <message>
        <source>Zoom &amp;in</source>
        <translation>Ver&amp;größern</translation>
    </message>
    <message>
        <source>Shows the picture larger</source>
        <translation>Zeigt das Bild größer</translation>
    </message>
    <message>
        <source>Zoom &amp;out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>Shows the picture smaller</source>
        <translation>Zeigt das Bild kleiner</translation>
    </message>
    <message>
        <source>List of &amp;pages</source>
        <translation>Liste der &amp;Seiten</translation>
    </message>
    <message>
        <source>Shows or hides the pages of the document</source>
        <translation>Zeigt oder verbirgt die Seiten des Dokuments</translation>
    </message>
    <message>
        <source>List of &amp;steps</source>
        <translation>Liste der S&amp;chritte</translation>
    </message>
    <message>
        <source>Shows or hides the steps that lead to the picture</source>
        <translation>Zeigt oder verbirgt die Schritte, die zum Bild führen</translation>
    </message>
    <message>
        <source>P&amp;revious page</source>
        <translation>&amp;Vorige Seite</translation>
    </message>
    <message>
        <source>Goes to the page before</source>
        <translation>Geht zur Seite davor</translation>
    </message>
    <message>
        <source>&amp;Next page</source>
        <translation>&amp;Nächste Seite</translation>
    </message>
    <message>
        <source>Goes to the page after</source>
        <translation>Geht zur Seite danach</translation>
    </message>
    <message>
        <source>Firs&amp;t page</source>
        <translation>Ers&amp;te Seite</translation>
    </message>
    <message>
        <source>Goes to the first page</source>
        <translation>Geht zur ersten Seite</translation>
    </message>
    <message>
        <source>&amp;Last page</source>
        <translation>&amp;Letzte Seite</translation>
    </message>
    <message>
        <source>Goes to the last page</source>
        <translation>Geht zur letzten Seite</translation>
    </message>
    <message>
        <source>&amp;Documentation</source>
        <translation>&amp;Dokumentation</translation>
    </message>
    <message>
        <source>Opens the documentation</source>
        <translation>Öffnet die Dokumentation</translation>
    </message>
    <message>
        <source>Edit picture</source>
        <translation>Bild bearbeiten</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>Arrow keys go from tool to tool, Space and Enter press one, F6 comes back here</source>
        <translation>Pfeiltasten gehen von Werkzeug zu Werkzeug, Leertaste und Eingabetaste drücken eines, F6 kommt hierher zurück</translation>
    </message>
    <message>
        <source>The picture</source>
        <translation>Das Bild</translation>
    </message>
    <message>
        <source>The wheel, plus and minus zoom, dragging and arrow keys move the picture</source>
        <translation>Das Rad, Plus und Minus zoomen, Ziehen und Pfeiltasten verschieben das Bild</translation>
    </message>
    <message>
        <source>Turn the wheel to zoom, drag to move</source>
        <translation>Rad drehen zum Zoomen, ziehen zum Verschieben</translation>
    </message>
    <message>
        <source>No picture: open a file, or drop one here</source>
        <translation>Kein Bild: Datei öffnen oder hierher ziehen</translation>
    </message>
    <message>
        <source>Page&amp;s</source>
        <translation>&amp;Seiten</translation>
    </message>
    <message>
        <source>The pages of the document; Enter or a click shows one</source>
        <translation>Die Seiten des Dokuments; Eingabetaste oder Klick zeigt eine</translation>
    </message>
    <message>
        <source>S&amp;teps</source>
        <translation>S&amp;chritte</translation>
    </message>
    <message>
        <source>The steps of the picture; Enter or a click goes back to one, or forward</source>
        <translation>Die Schritte des Bildes; Eingabetaste oder Klick geht zu einem zurück oder vor</translation>
    </message>
    <message>
        <source>As opened</source>
        <translation>Wie geöffnet</translation>
    </message>
    <message>
        <source>Dots per inch at which the page is drawn; type a number and press Enter</source>
        <translation>Punkte pro Zoll, mit denen die Seite gezeichnet wird; Zahl eingeben und Eingabetaste drücken</translation>
    </message>
    <message>
        <source>&amp;Angle [°]</source>
        <translation>&amp;Winkel [°]</translation>
    </message>
    <message>
        <source>Degrees, counter-clockwise; Enter rotates the picture</source>
        <translation>Grad gegen den Uhrzeigersinn; Eingabetaste dreht das Bild</translation>
    </message>
    <message>
        <source>Angle in degrees</source>
        <translation>Winkel in Grad</translation>
    </message>
    <message>
        <source>R&amp;otate</source>
        <translation>D&amp;rehen</translation>
    </message>
    <message>
        <source>Rotates the picture by the angle</source>
        <translation>Dreht das Bild um den Winkel</translation>
    </message>
    <message>
        <source>Pa&amp;ge (of %d)</source>
        <translation>S&amp;eite (von %d)</translation>
    </message>
    <message>
        <source>Page %d</source>
        <translation>Seite %d</translation>
    </message>
    <message>
        <source>Zoom %d %%</source>
        <translation>Zoom %d %%</translation>
    </message>
    <message>
        <source>Cancel the running work</source>
        <translation>Laufende Arbeit abbrechen</translation>
    </message>
    <message>
        <source>Stops what is running; the picture stays as it was (Escape)</source>
        <translation>Beendet, was gerade läuft; das Bild bleibt, wie es war (Escape)</translation>
    </message>
    <message>
        <source>Not enough memory</source>
        <translation>Nicht genug Arbeitsspeicher</translation>
    </message>
    <message>
        <source>Unknown fault</source>
        <translation>Unbekannter Fehler</translation>
    </message>
    <message>
        <source>Writes the file and closes the window</source>
        <translation>Schreibt die Datei und schließt das Fenster</translation>
    </message>
    <message>
        <source>Closes the window, or stops what is running; asks if work would be lost</source>
        <translation>Schließt das Fenster oder beendet, was läuft; fragt, wenn Arbeit verloren ginge</translation>
    </message>
    <message>
        <source>&amp;Discard</source>
        <translation>&amp;Verwerfen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>&amp;Replace</source>
        <translation>&amp;Ersetzen</translation>
    </message>
    <message>
        <source>&amp;Take up</source>
        <translation>&amp;Übernehmen</translation>
    </message>
    <message>
        <source>Steps are kept in a list and run on the picture as it was opened. Undo and the list of steps go back at any time. OK writes the file that was named, and asks before it replaces one. The compressed pixels of a file are kept where that is possible; the window says so before it writes.</source>
        <translation>Schritte stehen in einer Liste und laufen auf dem Bild, wie es geöffnet wurde. Rückgängig und die Liste der Schritte gehen jederzeit zurück. OK schreibt die genannte Datei und fragt, bevor es eine ersetzt. Die komprimierten Pixel einer Datei bleiben erhalten, wo das möglich ist; das Fenster sagt es vor dem Schreiben.</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>Help on the editor</source>
        <translation>Hilfe zum Editor</translation>
    </message>
    <message>
        <source>Turn left</source>
        <translation>Nach links drehen</translation>
    </message>
    <message>
        <source>Turn right</source>
        <translation>Nach rechts drehen</translation>
    </message>
    <message>
        <source>Turn by 180 degrees</source>
        <translation>Um 180 Grad drehen</translation>
    </message>
    <message>
        <source>Mirror left and right</source>
        <translation>Links und rechts spiegeln</translation>
    </message>
    <message>
        <source>Mirror top and bottom</source>
        <translation>Oben und unten spiegeln</translation>
    </message>
    <message>
        <source>Rotate by %s degrees</source>
        <translation>Um %s Grad drehen</translation>
    </message>
    <message>
        <source>Turn north up</source>
        <translation>Nach Norden ausrichten</translation>
    </message>
    <message>
        <source>Crop to %d x %d</source>
        <translation>Auf %d x %d zuschneiden</translation>
    </message>
    <message>
        <source>Resize to %d x %d</source>
        <translation>Größe %d x %d</translation>
    </message>
    <message>
        <source>Make gray</source>
        <translation>In Graustufen umwandeln</translation>
    </message>
    <message>
        <source>Make black and white</source>
        <translation>In Schwarzweiß umwandeln</translation>
    </message>
    <message>
        <source>Reduce to %d colors</source>
        <translation>Auf %d Farben verringern</translation>
    </message>
    <message>
        <source>Change to %d bits</source>
        <translation>In %d Bit umwandeln</translation>
    </message>
    <message>
        <source>Change colors</source>
        <translation>Farben ändern</translation>
    </message>
    <message>
        <source>Combine with another picture</source>
        <translation>Mit einem anderen Bild verbinden</translation>
    </message>
    <message>
        <source>Take the palette of another picture</source>
        <translation>Palette eines anderen Bildes nehmen</translation>
    </message>
    <message>
        <source>Set the position</source>
        <translation>Lage setzen</translation>
    </message>
    <message>
        <source>Change metadata</source>
        <translation>Metadaten ändern</translation>
    </message>
    <message>
        <source>Stretch the numbers</source>
        <translation>Zahlen strecken</translation>
    </message>
    <message>
        <source>Other step</source>
        <translation>Anderer Schritt</translation>
    </message>
    <message>
        <source>Reading the picture</source>
        <translation>Das Bild wird gelesen</translation>
    </message>
    <message>
        <source>Drawing the page</source>
        <translation>Die Seite wird gezeichnet</translation>
    </message>
    <message>
        <source>Undoing a step</source>
        <translation>Ein Schritt wird zurückgenommen</translation>
    </message>
    <message>
        <source>Saving the picture</source>
        <translation>Das Bild wird gespeichert</translation>
    </message>
    <message>
        <source>Checking how it is saved</source>
        <translation>Das Speichern wird geprüft</translation>
    </message>
    <message>
        <source>%s (%s MiB)</source>
        <translation>%s (%s MiB)</translation>
    </message>
    <message>
        <source>%s: %d x %d pixels, %d bits, %s MiB</source>
        <translation>%s: %d x %d Pixel, %d Bit, %s MiB</translation>
    </message>
    <message>
        <source>%s: %d x %d pixels, %d bits, %s dpi, %s MiB</source>
        <translation>%s: %d x %d Pixel, %d Bit, %s dpi, %s MiB</translation>
    </message>
    <message>
        <source>%s, page %d of %d</source>
        <translation>%s, Seite %d von %d</translation>
    </message>
    <message>
        <source>Lossless: the compressed pixels are moved</source>
        <translation>Verlustfrei: Die komprimierten Pixel werden verschoben</translation>
    </message>
    <message>
        <source>%s cannot be written: %s.
Choose another folder or name before you save.</source>
        <translation>%s kann nicht geschrieben werden: %s.
Wählen Sie vor dem Speichern einen anderen Ordner oder Namen.</translation>
    </message>
    <message>
        <source>Files of the type %s cannot be written. The picture is saved as %s.</source>
        <translation>Dateien vom Typ %s können nicht geschrieben werden. Das Bild wird als %s gespeichert.</translation>
    </message>
    <message>
        <source>%s is the file that is edited, and its type cannot be written. Choose another name.</source>
        <translation>%s ist die Datei, die bearbeitet wird, und ihr Typ kann nicht geschrieben werden. Wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>%s exists. Do you want to replace it?</source>
        <translation>%s ist vorhanden. Möchten Sie die Datei ersetzen?</translation>
    </message>
    <message>
        <source>%s was changed by another program. Do you want to replace it nevertheless?</source>
        <translation>%s wurde von einem anderen Programm geändert. Möchten Sie die Datei trotzdem ersetzen?</translation>
    </message>
    <message>
        <source>%s has changes that are not saved. Do you want to save them?</source>
        <translation>%s hat Änderungen, die nicht gespeichert sind. Möchten Sie sie speichern?</translation>
    </message>
    <message>
        <source>The editor ended before the changes of %s were saved. Do you want to take them up? Steps: %d</source>
        <translation>Der Editor endete, bevor die Änderungen an %s gespeichert waren. Möchten Sie sie übernehmen? Schritte: %d</translation>
    </message>
    <message>
        <source>The editor ended before the changes of %s were saved, and the file was changed since. The changes may be in the file already. Do you want to take them up nevertheless? Steps: %d</source>
        <translation>Der Editor endete, bevor die Änderungen an %s gespeichert waren. Die Datei wurde seitdem geändert. Die Änderungen können schon in der Datei sein. Möchten Sie sie trotzdem übernehmen? Schritte: %d</translation>
    </message>
    <message>
        <source>The picture is saved as %s. This file exists already. Overwrite it?</source>
        <translation>Das Bild wird als %s gespeichert. Diese Datei ist bereits vorhanden. Überschreiben?</translation>
    </message>
    <message>
        <source>Sets all values back, so that nothing is changed</source>
        <translation>Setzt alle Werte zurück, sodass nichts geändert wird</translation>
    </message>
    <message>
        <source>Black and white</source>
        <translation>Schwarzweiß</translation>
    </message>
    <message>
        <source>Bef&amp;ore</source>
        <translation>&amp;Vorher</translation>
    </message>
    <message>
        <source>Shows the original while it is held down; so does the key B</source>
        <translation>Zeigt das Original, solange die Schaltfläche gedrückt ist; ebenso die Taste B</translation>
    </message>
    <message>
        <source>Shows one pixel of the picture for one of the screen, exactly as OK makes it</source>
        <translation>Zeigt je Bildpunkt einen Punkt des Bildschirms, genau so wie OK ihn erzeugt</translation>
    </message>
    <message>
        <source>&amp;Loupe</source>
        <translation>&amp;Lupe</translation>
    </message>
    <message>
        <source>Shows the pixels under the cursor in their actual size where the picture is shown smaller</source>
        <translation>Zeigt die Bildpunkte unter dem Zeiger in Originalgröße, wo das Bild verkleinert ist</translation>
    </message>
    <message>
        <source>Changed only</source>
        <translation>Nur geändert</translation>
    </message>
    <message>
        <source>Side by side</source>
        <translation>Nebeneinander</translation>
    </message>
    <message>
        <source>Split</source>
        <translation>Geteilt</translation>
    </message>
    <message>
        <source>Drag the picture or the divider; the wheel zooms</source>
        <translation>Bild oder Trennlinie ziehen; das Rad zoomt</translation>
    </message>
    <message>
        <source>Arrow keys move the picture or the loupe, with Ctrl the divider. Plus and minus zoom.</source>
        <translation>Pfeiltasten verschieben das Bild oder die Lupe, mit Strg die Trennlinie. Plus und Minus zoomen.</translation>
    </message>
    <message>
        <source>Vie&amp;w</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>How original and changed picture are shown</source>
        <translation>Wie Original und geändertes Bild gezeigt werden</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Histogram</source>
        <translation>Histogramm</translation>
    </message>
    <message>
        <source>How often each brightness occurs in the changed picture; lines for red, green and blue</source>
        <translation>Wie oft jede Helligkeit im geänderten Bild vorkommt; Linien für Rot, Grün und Blau</translation>
    </message>
    <message>
        <source>How often each gray value occurs; drag the line to the threshold. The triangle marks the automatic threshold.</source>
        <translation>Wie oft jeder Grauwert vorkommt; die Linie auf die Schwelle ziehen. Das Dreieck markiert die automatische Schwelle.</translation>
    </message>
    <message>
        <source>Black %d %%, white %d %%</source>
        <translation>Schwarz %d %%, Weiß %d %%</translation>
    </message>
    <message>
        <source>From %d to %d, mean %d</source>
        <translation>Von %d bis %d, Mittel %d</translation>
    </message>
    <message>
        <source>Las&amp;t values</source>
        <translation>Le&amp;tzte Werte</translation>
    </message>
    <message>
        <source>Takes the values of the last time</source>
        <translation>Übernimmt die Werte vom letzten Mal</translation>
    </message>
    <message>
        <source>Re&amp;do</source>
        <translation>Wie&amp;derholen</translation>
    </message>
    <message>
        <source>Makes the change again that was taken back</source>
        <translation>Stellt die zurückgenommene Änderung wieder her</translation>
    </message>
    <message>
        <source>U&amp;ndo</source>
        <translation>Rückgä&amp;ngig</translation>
    </message>
    <message>
        <source>Takes back the last change of a value</source>
        <translation>Nimmt die letzte Änderung eines Wertes zurück</translation>
    </message>
    <message>
        <source>Sets this value back (Delete on the track bar, or double click on the label)</source>
        <translation>Setzt diesen Wert zurück (Entf auf dem Regler oder Doppelklick auf die Beschriftung)</translation>
    </message>
    <message>
        <source>Auto&amp;matic</source>
        <translation>Auto&amp;matisch</translation>
    </message>
    <message>
        <source>Finds the threshold that separates dark and light best, for each picture anew</source>
        <translation>Findet die Schwelle, die Dunkel und Hell am besten trennt, für jedes Bild neu</translation>
    </message>
    <message>
        <source>Automatic threshold: %d</source>
        <translation>Automatische Schwelle: %d</translation>
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
        <source>Pla&amp;ces</source>
        <translation>Or&amp;te</translation>
    </message>
    <message>
        <source>F&amp;iles of the folder</source>
        <translation>&amp;Dateien des Ordners</translation>
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
        <source>Chooses another folder or name</source>
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
        <source>Befo&amp;re</source>
        <translation>&amp;Vorher</translation>
    </message>
    <message>
        <source>As sa&amp;ved</source>
        <translation>Gespei&amp;chert</translation>
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
        <source>As sa&amp;ved: the same pixels</source>
        <translation>Gespei&amp;chert: dieselben Pixel</translation>
    </message>
    <message>
        <source>As sa&amp;ved: being computed ...</source>
        <translation>Gespei&amp;chert: wird berechnet ...</translation>
    </message>
    <message>
        <source>As sa&amp;ved: cannot be shown</source>
        <translation>Gespei&amp;chert: kann nicht gezeigt werden</translation>
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
        <source>OK writes %s</source>
        <translation>OK schreibt %s</translation>
    </message>
    <message>
        <source>A0</source>
        <translation>A0</translation>
    </message>
    <message>
        <source>A1</source>
        <translation>A1</translation>
    </message>
    <message>
        <source>A2</source>
        <translation>A2</translation>
    </message>
    <message>
        <source>A3</source>
        <translation>A3</translation>
    </message>
    <message>
        <source>A4</source>
        <translation>A4</translation>
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
    <message>
        <source>Steps that do not fit the picture and are skipped: %d (%s)</source>
        <translation>Schritte, die nicht zum Bild passen und ausgelassen werden: %d (%s)</translation>
    </message>
    <message>
        <source>%s - Edit picture</source>
        <translation>%s - Bild bearbeiten</translation>
    </message>
</context>
</TS>
