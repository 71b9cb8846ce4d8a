// Where the picture lies in the window, in CSS pixels of the window.
//
//   +--- window ----------------+
//   |    +-- box ----------+    |      scale: CSS pixels for each pixel of the picture
//   |    |  picture        |    |      (centreX, centreY): the place of the picture, in its own
//   |    +-----------------+    |      pixels, that lies in the middle of the window
//   +---------------------------+

export interface Size {
  readonly width: number;
  readonly height: number;
}

export interface Place {
  readonly x: number;
  readonly y: number;
}

export interface Box extends Place, Size {}

export interface View {
  readonly scale: number;
  readonly centreX: number;
  readonly centreY: number;
}

export const leastScale = 1 / 32;
export const greatestScale = 64;

export function fitted(picture: Size, window: Size): View {
  const scale = Math.min(window.width / picture.width, window.height / picture.height);
  return { scale: Math.max(scale, leastScale), centreX: picture.width / 2, centreY: picture.height / 2 };
}

// Corners lie on whole pixels, so that at 1:1 no pixel of the picture is smeared over two.
export function boxOf(view: View, picture: Size, window: Size): Box {
  return {
    x: Math.round(window.width / 2 - view.centreX * view.scale),
    y: Math.round(window.height / 2 - view.centreY * view.scale),
    width: picture.width * view.scale,
    height: picture.height * view.scale,
  };
}

export function toPicture(view: View, picture: Size, window: Size, place: Place): Place {
  const box = boxOf(view, picture, window);
  return { x: (place.x - box.x) / view.scale, y: (place.y - box.y) / view.scale };
}

// The centre stays within the picture, so that it cannot be lost from sight.
export function held(view: View, picture: Size): View {
  const within = (number: number, most: number) => Math.min(Math.max(number, 0), most);
  return {
    scale: within(view.scale, greatestScale) < leastScale ? leastScale : Math.min(view.scale, greatestScale),
    centreX: within(view.centreX, picture.width),
    centreY: within(view.centreY, picture.height),
  };
}

// The place of the picture under `at` stays there.
export function zoomedAt(view: View, picture: Size, window: Size, at: Place, factor: number): View {
  const scale = Math.min(Math.max(view.scale * factor, leastScale), greatestScale);
  const fromCentreX = at.x - window.width / 2;
  const fromCentreY = at.y - window.height / 2;
  return held(
    {
      scale,
      centreX: view.centreX + fromCentreX / view.scale - fromCentreX / scale,
      centreY: view.centreY + fromCentreY / view.scale - fromCentreY / scale,
    },
    picture,
  );
}

export function panned(view: View, picture: Size, byX: number, byY: number): View {
  return held({ ...view, centreX: view.centreX - byX / view.scale, centreY: view.centreY - byY / view.scale }, picture);
}

// The pixel of the picture at a place, or null beside it.
export function pixelAt(place: Place, picture: Size): Place | null {
  const x = Math.floor(place.x);
  const y = Math.floor(place.y);
  return x >= 0 && y >= 0 && x < picture.width && y < picture.height ? { x, y } : null;
}
