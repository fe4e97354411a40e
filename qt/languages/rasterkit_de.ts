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
        <source>All files</source>
        <translation>Alle Dateien</translation>
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
        <source>Bitmap dimensions</source>
        <translation>Bildgröße</translation>
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
        <source>Page at this resolution</source>
        <translation>Seite bei dieser Auflösung</translation>
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
</context>
</TS>
