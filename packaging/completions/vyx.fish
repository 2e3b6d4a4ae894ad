# SPDX-License-Identifier: MIT
# Completion of the command vyx in fish.

complete -c vyx -s f -l fullscreen -d 'Cover the screen'
complete -c vyx -l preload -d 'Read the file through twice before it plays'
complete -c vyx -l denoising -x -d 'Denoise instead of super-resolution: level, 0 to 60'
complete -c vyx -s s -l sharpening -x -d 'Sharpen: percent, 0 to 100'
complete -c vyx -s c -l contrast -x -d 'Contrast: percent, -200 to 200'
complete -c vyx -s b -l brightness -x -d 'Brightness: percent, -50 to 50'
complete -c vyx -s t -l temp_thresh -x -d 'How much pictures denoised together may differ: 0 to 40'
complete -c vyx -s g -l demo -d 'Show the original left of a red line'
complete -c vyx -s l -l loop -d 'Start again at the end'
